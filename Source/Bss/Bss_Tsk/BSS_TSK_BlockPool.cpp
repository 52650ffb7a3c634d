// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. What a thread keeps for itself would have to be given back at its end, of which not every
// system tells while the thread's memory is still there. So threads borrow: each begins at a place of its own
// and takes it for the few steps of one allocation.
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Tsk/BSS_TSK_BlockSlab.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <new>
#include <tuple>

namespace BSS::TSK {

namespace {

constexpr unsigned PLACES = 32; // more threads than ever post at one moment, on most machines

constinit std::atomic<unsigned> s_nThreads{0};
constinit thread_local unsigned t_place = PLACES;

unsigned FirstPlace() noexcept
{
    if (t_place == PLACES) t_place = s_nThreads.fetch_add(1, std::memory_order_relaxed) % PLACES;
    return t_place;
}

// The blocks of one size.
template<std::size_t BYTES>
class SizeC
{
    using SlabT = BlockSlabT<BYTES>;
    using SetT = typename SlabT::SetT;

public:
    static void* Allocate()
    {
        const unsigned first = FirstPlace();
        for (unsigned n = 0; n < PLACES; ++n) {
            const TurnC turn(s_places[(first + n) % PLACES]);
            if (turn) return turn->Allocate();
        }
        // Each is in use, or was when its thread was ended by force.
        PlaceT own;
        void* const block = own.Allocate();
        own.GiveUp();
        return block;
    }

    static void Free(void* block) noexcept
    {
        SlabT* const slab = SlabT::Of(block);
        if (slab->GiveBack(SlabT::SetOf(block))) s_store.Give(slab);
    }

private:
    // A slab that is being used up, in the order of the addresses.
    struct alignas(64) PlaceT
    {
        std::atomic<bool> bTaken{false};
        SlabT* slab = nullptr;
        SetT free = 0;

        void* Allocate()
        {
            if (free == 0) Refill();
            void* const block = slab->BlockAt(static_cast<unsigned>(std::countr_zero(free)));
            free &= free - 1;
            return block;
        }

        void GiveUp() noexcept
        {
            slab->GiveBack(free);
            if (!slab->LetGo()) s_store.Give(slab);
        }

    private:
        void Refill()
        {
            if (slab != nullptr) {
                if (!slab->LetGo()) {
                    free = slab->TakeBack();
                    return;
                }
                slab = nullptr;
            }
            if (HAL::TakeFault(HAL::FaultT::PoolMemory)) throw std::bad_alloc();
            std::tie(slab, free) = s_store.Take();
        }
    };

    class TurnC
    {
    public:
        // Acquire pairs with the release below: one thread after the other has the place.
        explicit TurnC(PlaceT& place) noexcept
            : m_place(place.bTaken.exchange(true, std::memory_order_acquire) ? nullptr : &place)
        {}
        ~TurnC()
        {
            if (m_place != nullptr) m_place->bTaken.store(false, std::memory_order_release);
        }
        TurnC(const TurnC&) = delete;
        TurnC& operator=(const TurnC&) = delete;
        explicit operator bool() const noexcept { return m_place != nullptr; }
        PlaceT* operator->() const noexcept { return m_place; }

    private:
        PlaceT* const m_place;
    };

    static constinit SlabStoreT<BYTES> s_store;
    static constinit std::array<PlaceT, PLACES> s_places;
};

template<std::size_t BYTES>
constinit SlabStoreT<BYTES> SizeC<BYTES>::s_store;
template<std::size_t BYTES>
constinit std::array<typename SizeC<BYTES>::PlaceT, PLACES> SizeC<BYTES>::s_places;

using SmallT = SizeC<BlockPool::SMALL_BYTES>;
using LargeT = SizeC<BlockPool::LARGE_BYTES>;

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
