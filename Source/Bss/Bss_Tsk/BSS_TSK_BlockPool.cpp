// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Tsk/BSS_TSK_BlockSlab.h"

#include <bit>
#include <cstdint>
#include <new>
#include <tuple>
#include <utility>

namespace BSS::TSK {

namespace {

enum class Life : std::uint8_t
{
    Unused,
    Used,
    Over // the thread's cleanup has run; nothing is kept any more
};

constinit thread_local Life t_life = Life::Unused;

void NoteThread() noexcept;

// The blocks of one size. A thread allocates from the slab that it holds, in the order of the addresses.
template<std::size_t BYTES>
class SizeC
{
    using SlabT = BlockSlabT<BYTES>;
    using SetT = typename SlabT::SetT;

public:
    static void* Allocate()
    {
        if (t_free == 0) Refill();
        void* const block = t_slab->BlockAt(static_cast<unsigned>(std::countr_zero(t_free)));
        t_free &= t_free - 1;
        if (t_life == Life::Over) GiveUp();
        return block;
    }

    static void Free(void* block) noexcept
    {
        SlabT* const slab = SlabT::Of(block);
        if (slab == t_slab) {
            t_free |= SlabT::SetOf(block);
        } else if (slab->GiveBack(SlabT::SetOf(block))) {
            s_store.Give(slab);
        }
    }

    // Nothing stays with the thread.
    static void GiveUp() noexcept
    {
        if (t_slab == nullptr) return;
        t_slab->GiveBack(std::exchange(t_free, 0));
        if (!t_slab->LetGo()) s_store.Give(t_slab);
        t_slab = nullptr;
    }

private:
    static void Refill()
    {
        if (t_slab != nullptr) {
            if (!t_slab->LetGo()) {
                t_free = t_slab->TakeBack();
                return;
            }
            t_slab = nullptr;
        }
        if (t_life == Life::Unused) NoteThread();
        if (HAL::TakeFault(HAL::FaultT::PoolMemory)) throw std::bad_alloc();
        std::tie(t_slab, t_free) = s_store.Take();
    }

    static constinit SlabStoreT<BYTES> s_store;
    static constinit thread_local SlabT* t_slab;
    static constinit thread_local SetT t_free;
};

template<std::size_t BYTES>
constinit SlabStoreT<BYTES> SizeC<BYTES>::s_store;
template<std::size_t BYTES>
constinit thread_local BlockSlabT<BYTES>* SizeC<BYTES>::t_slab = nullptr;
template<std::size_t BYTES>
constinit thread_local typename BlockSlabT<BYTES>::SetT SizeC<BYTES>::t_free = 0;

using SmallT = SizeC<BlockPool::SMALL_BYTES>;
using LargeT = SizeC<BlockPool::LARGE_BYTES>;

struct ThreadEndC
{
    ~ThreadEndC()
    {
        t_life = Life::Over;
        SmallT::GiveUp();
        LargeT::GiveUp();
    }
};

void NoteThread() noexcept
{
    static thread_local const ThreadEndC end;
    static_cast<void>(&end);
    t_life = Life::Used;
}

} // namespace

void* BlockPool::Allocate(std::size_t bytes)
{
    if (bytes <= SMALL_BYTES) return SmallT::Allocate();
    if (bytes <= LARGE_BYTES) return LargeT::Allocate();
    return ::operator new(bytes);
}

void BlockPool::Free(void* block, std::size_t bytes) noexcept
{
    if (bytes <= SMALL_BYTES) {
        SmallT::Free(block);
    } else if (bytes <= LARGE_BYTES) {
        LargeT::Free(block);
    } else {
        ::operator delete(block);
    }
}

} // namespace BSS::TSK
