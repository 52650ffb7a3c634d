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
    void operator()(void* pMemory) const noexcept { BSS::HAL::GiveLargePageBack(pMemory); }
};

using LargeMemoryT = std::unique_ptr<void, LargeMemoryDeleterT>;

/// s_nLargeMemoryBytes of memory. Throws std::bad_alloc.
inline LargeMemoryT MakeLargeMemory()
{
    LargeMemoryT pMemory(BSS::HAL::TakeLargePage());
    if (pMemory == nullptr) throw std::bad_alloc();
    return pMemory;
}

} // namespace SIO
