// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Linux maps a large page at the first touch, where the memory begins at a multiple of its size and it has
// been told before. The heap is no source of such memory: a hole that it left fits no second time. Where
// reaching beyond memory is being looked for, the heap is the source all the same: it alone is watched.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#define BSS_HAL_WATCHED_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BSS_HAL_WATCHED_MEMORY
#endif
#endif

namespace BSS::HAL {

#if defined(BSS_HAL_WATCHED_MEMORY)

namespace {

constexpr std::align_val_t s_eAlignment{s_nLargePageAlignment};

} // namespace

void* TakeLargePage() noexcept
{
    try {
        return std::memset(::operator new(s_nLargePageBytes, s_eAlignment), 0, s_nLargePageBytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void GiveLargePageBack(void* pMemory) noexcept
{
    ::operator delete(pMemory, s_eAlignment);
}

#else

namespace {

void* Map(std::size_t nBytes) noexcept
{
    void* const pMemory = ::mmap(nullptr, nBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pMemory != MAP_FAILED ? pMemory : nullptr;
}

/// How many bytes there are from `pMemory` to the next multiple of a large page.
std::size_t BytesToMultiple(const void* pMemory) noexcept
{
    return (0 - reinterpret_cast<std::uintptr_t>(pMemory)) % s_nLargePageBytes;
}

/// Maps twice as much and gives back what lies before and behind.
void* MapAligned() noexcept
{
    auto* const pMemory = static_cast<char*>(Map(2 * s_nLargePageBytes));
    if (pMemory == nullptr) return nullptr;
    const std::size_t nBefore = BytesToMultiple(pMemory);
    char* const pBegin = pMemory + nBefore;
    if (nBefore != 0) ::munmap(pMemory, nBefore);
    ::munmap(pBegin + s_nLargePageBytes, s_nLargePageBytes - nBefore);
    return pBegin;
}

} // namespace

void* TakeLargePage() noexcept
{
    void* pMemory = Map(s_nLargePageBytes); // Next to another one, or by a newer kernel, it is aligned.
    if (pMemory != nullptr && BytesToMultiple(pMemory) != 0) {
        ::munmap(pMemory, s_nLargePageBytes);
        pMemory = MapAligned();
    }
    if (pMemory != nullptr) static_cast<void>(::madvise(pMemory, s_nLargePageBytes, MADV_HUGEPAGE));
    return pMemory;
}

void GiveLargePageBack(void* pMemory) noexcept
{
    if (pMemory != nullptr) ::munmap(pMemory, s_nLargePageBytes);
}

#endif

} // namespace BSS::HAL
