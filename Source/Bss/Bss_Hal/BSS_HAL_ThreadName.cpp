// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A plain array of characters per thread: nothing to allocate, nothing to free when the thread ends.
#include "Bss/Bss_Hal/BSS_HAL_ThreadName.h"

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <cstddef>

namespace BSS::HAL {

namespace {

constexpr std::size_t NAME_SIZE = 64;
constinit thread_local char t_name[NAME_SIZE] = {};
constinit thread_local std::uint32_t t_version = 1;

} // namespace

const char* ThreadNameOr(const char* fallback) noexcept
{
    return t_name[0] != '\0' ? t_name : fallback;
}

void SetCurrentThreadName(const char* name) noexcept
{
    std::size_t length = 0;
    while (name != nullptr && length + 1 < NAME_SIZE && name[length] != '\0') {
        t_name[length] = name[length];
        ++length;
    }
    t_name[length] = '\0';
    NoteThreadChanged();
}

std::uint32_t CurrentThreadVersion() noexcept
{
    return t_version;
}

void NoteThreadChanged() noexcept
{
    if (++t_version == 0) t_version = 1; // 0 is never current
}

} // namespace BSS::HAL
