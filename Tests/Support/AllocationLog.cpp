// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A table of fixed size, since the log may not allocate itself.
#include "Support/AllocationLog.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

struct EntryT
{
    const void* pMemory;
    std::size_t nBytes;
    int iOwner;
};

constinit thread_local int t_iOwner = 0;
constinit thread_local std::array<EntryT, 4096> t_aEntries{};

void* Note(void* pMemory, std::size_t nBytes) noexcept
{
    if (t_iOwner == 0 || pMemory == nullptr) return pMemory;
    for (EntryT& entry : t_aEntries) {
        if (entry.pMemory != nullptr) continue;
        entry = {pMemory, nBytes, t_iOwner};
        return pMemory;
    }
    std::abort(); // the table is too small
}

void Forget(const void* pMemory) noexcept
{
    for (EntryT& entry : t_aEntries) {
        if (entry.pMemory == pMemory) entry = {};
    }
}

void* TakeAligned(std::size_t nBytes, std::size_t nAlignment) noexcept
{
    auto* const pWhole = static_cast<char*>(std::malloc(sizeof(void*) + nAlignment + nBytes));
    if (pWhole == nullptr) return nullptr;
    const std::uintptr_t uFirst = reinterpret_cast<std::uintptr_t>(pWhole) + sizeof(void*);
    const std::uintptr_t uRest = uFirst % nAlignment;
    char* const pMemory = pWhole + sizeof(void*) + (uRest == 0 ? 0 : nAlignment - uRest);
    reinterpret_cast<void**>(pMemory)[-1] = pWhole;
    return Note(pMemory, nBytes);
}

void* OrThrow(void* pMemory)
{
    if (pMemory == nullptr) throw std::bad_alloc();
    return pMemory;
}

void Give(void* pMemory) noexcept
{
    Forget(pMemory);
    std::free(pMemory);
}

void GiveAligned(void* pMemory) noexcept
{
    Forget(pMemory);
    if (pMemory != nullptr) std::free(static_cast<void**>(pMemory)[-1]);
}

} // namespace

// GCC takes the matching of these with the heap functions for a mistake once they are inlined.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Note(std::malloc(size > 0 ? size : 1), size);
}

void* operator new(std::size_t size)
{
    return OrThrow(operator new(size, std::nothrow));
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size, std::nothrow);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return OrThrow(TakeAligned(size, static_cast<std::size_t>(alignment)));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return OrThrow(TakeAligned(size, static_cast<std::size_t>(alignment)));
}

void operator delete(void* memory) noexcept
{
    Give(memory);
}

void operator delete[](void* memory) noexcept
{
    Give(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Give(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    Give(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    Give(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    Give(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    GiveAligned(memory);
}

void operator delete[](void* memory, std::align_val_t) noexcept
{
    GiveAligned(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    GiveAligned(memory);
}

void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept
{
    GiveAligned(memory);
}

#pragma GCC diagnostic pop

namespace Support {

AllocationsFor::AllocationsFor(int owner) noexcept
{
    t_iOwner = owner;
}

AllocationsFor::~AllocationsFor()
{
    t_iOwner = 0;
}

std::vector<BlockT> BlocksOf(int owner)
{
    std::vector<BlockT> blocks;
    for (const EntryT& entry : t_aEntries) {
        if (entry.pMemory != nullptr && entry.iOwner == owner)
            blocks.push_back({static_cast<const char*>(entry.pMemory), entry.nBytes});
    }
    return blocks;
}

} // namespace Support
