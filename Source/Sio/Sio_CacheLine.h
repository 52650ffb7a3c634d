// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory that shares no cache line with anything else. Two readers on two threads are independent; they are
// also as fast as each by itself only when neither writes into a line that the other one reads.
#pragma once

#include <cstddef>
#include <limits>
#include <new>

namespace SIO {

/// A constant of our own: the one of the standard library changes with compiler options.
inline constexpr std::size_t s_nCacheLineBytes = 64;

/// Gives out whole cache lines.
template<typename T>
struct CacheLineAllocatorT
{
    using value_type = T;

    CacheLineAllocatorT() = default;
    template<typename OtherT>
    CacheLineAllocatorT(const CacheLineAllocatorT<OtherT>&) noexcept
    {}

    T* allocate(std::size_t nItems)
    {
        constexpr std::size_t nMost = std::numeric_limits<std::size_t>::max() / sizeof(T) - s_nCacheLineBytes;
        if (nItems > nMost) throw std::bad_alloc();
        const std::size_t nLines = (nItems * sizeof(T) + s_nCacheLineBytes - 1) / s_nCacheLineBytes;
        return static_cast<T*>(
            ::operator new (nLines* s_nCacheLineBytes, std::align_val_t{s_nCacheLineBytes}));
    }

    void deallocate(T* pItems, std::size_t) noexcept
    {
        ::operator delete (pItems, std::align_val_t{s_nCacheLineBytes});
    }

    bool operator==(const CacheLineAllocatorT&) const = default;
};

} // namespace SIO
