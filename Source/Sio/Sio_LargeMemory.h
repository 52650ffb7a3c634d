// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A piece of memory as large as the system's large pages, for lists that grow to many of these. Freed with
// its owner.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"

#include <cstddef>
#include <memory>
#include <new>

namespace SIO {

inline constexpr std::size_t s_nLargeMemoryBytes = BSS::HAL::s_nLargePageBytes;

struct LargeMemoryDeleterT
{
    void operator()(void* pMemory) const noexcept
    {
        ::operator delete (pMemory, std::align_val_t{s_nLargeMemoryBytes});
    }
};

using LargeMemoryT = std::unique_ptr<void, LargeMemoryDeleterT>;

/// s_nLargeMemoryBytes of memory. Throws std::bad_alloc.
inline LargeMemoryT MakeLargeMemory()
{
    LargeMemoryT pMemory(::operator new (s_nLargeMemoryBytes, std::align_val_t{s_nLargeMemoryBytes}));
    BSS::HAL::AdviseLargePages(pMemory.get(), s_nLargeMemoryBytes);
    return pMemory;
}

} // namespace SIO
