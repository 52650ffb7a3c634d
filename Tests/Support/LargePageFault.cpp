// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The linker sends every call of the two functions to those named __wrap_... here, and gives the originals as
// __real_....
#include "Support/LargePageFault.h"

namespace {

std::size_t g_refused = 0;
std::size_t g_asked = 0;
std::size_t g_held = 0;

} // namespace

extern "C" {

void* __real__ZN3BSS3HAL13TakeLargePageEv() noexcept;
void __real__ZN3BSS3HAL17GiveLargePageBackEPv(void* memory) noexcept;

void* __wrap__ZN3BSS3HAL13TakeLargePageEv() noexcept
{
    if (++g_asked == g_refused) return nullptr;
    void* const page = __real__ZN3BSS3HAL13TakeLargePageEv();
    if (page != nullptr) ++g_held;
    return page;
}

void __wrap__ZN3BSS3HAL17GiveLargePageBackEPv(void* memory) noexcept
{
    if (memory != nullptr) --g_held;
    __real__ZN3BSS3HAL17GiveLargePageBackEPv(memory);
}

} // extern "C"

namespace Support {

LargePageFault::LargePageFault(std::size_t n) : m_n(n)
{
    g_refused = n;
    g_asked = 0;
}

LargePageFault::~LargePageFault()
{
    g_refused = 0;
}

std::size_t LargePageFault::Asked() const
{
    return g_asked;
}

std::size_t LargePageFault::Held() const
{
    return g_held;
}

bool LargePageFault::Happened() const
{
    return m_n != 0 && g_asked >= m_n;
}

} // namespace Support
