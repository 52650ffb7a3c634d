// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

constinit thread_local std::size_t t_count = 0;
constinit thread_local std::size_t t_largest = 0;
constinit thread_local std::size_t t_bytes = 0;

} // namespace

// All forms but those for unusual alignment: a sanitizer brings forms of its own, and what one of them gives
// must not come back to another's.
//
// GCC takes the matching of these with the heap functions for a mistake once they are inlined.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    ++t_count;
    t_bytes += size;
    if (size > t_largest) t_largest = size;
    return std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size)
{
    void* const memory = operator new(size, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

#pragma GCC diagnostic pop

namespace Support {

AllocationCount::AllocationCount() noexcept : m_before(t_count), m_bytesBefore(t_bytes)
{
    t_largest = 0;
}

std::size_t AllocationCount::Count() const noexcept
{
    return t_count - m_before;
}

std::size_t AllocationCount::Largest() const noexcept
{
    return t_largest;
}

std::size_t AllocationCount::Bytes() const noexcept
{
    return t_bytes - m_bytesBefore;
}

} // namespace Support
