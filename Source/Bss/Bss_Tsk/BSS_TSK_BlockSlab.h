// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// 63 blocks of one size that lie beside each other, behind a head that says in one word which of them are
// free; and the store of the slabs that nobody allocates from. A slab is held by the one who does, or by the
// store, or by nobody while most of its blocks are in use. Any thread gives blocks back. Slabs are never
// unmapped: threads that were let go may give blocks back until the very end. Tests/Models/slab.pml goes
// through every order of the steps on the word, and has to change with them. For BlockPool only.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

namespace BSS::TSK {

template<std::size_t BYTES>
class BlockSlabT
{
public:
    static constexpr unsigned PLACES = 64; ///< the head takes the first
    static constexpr std::size_t SLAB_BYTES = PLACES * BYTES;

    /// A set of blocks; bit n is the block in place n.
    using SetT = std::uint64_t;
    static constexpr SetT ALL = ~SetT{1};

    /// For the holder, who is the first to have it: all its blocks.
    SetT Open() noexcept
    {
        m_word.store(HELD, std::memory_order_relaxed);
        return ALL;
    }

    /// For the holder: the blocks that have come back.
    SetT TakeBack() noexcept
    {
        // Acquire pairs with the release in GiveBack: whoever had a block is done with it.
        return m_word.exchange(HELD, std::memory_order_acquire) & ALL;
    }

    /// For the holder: gives up the slab, if fewer of its blocks than are worth it have come back.
    bool LetGo() noexcept
    {
        SetT word = m_word.load(std::memory_order_relaxed);
        while (!IsWorthIt(word)) {
            if (m_word.compare_exchange_weak(word, word & ~HELD, std::memory_order_relaxed)) return true;
        }
        return false;
    }

    /// Gives blocks back. Whether the caller, who is its holder then, must bring the slab to the store.
    bool GiveBack(SetT blocks) noexcept
    {
        const SetT before = m_word.fetch_or(blocks, std::memory_order_release);
        // Nobody holds it and nobody can take a block out, so the number only rises: one caller alone sees it
        // cross the limit.
        if ((before & HELD) != 0 || IsWorthIt(before) || !IsWorthIt(before | blocks)) return false;
        m_word.fetch_or(HELD, std::memory_order_relaxed);
        return true;
    }

    void* BlockAt(unsigned place) noexcept { return reinterpret_cast<unsigned char*>(this) + place * BYTES; }

    static BlockSlabT* Of(void* block) noexcept
    {
        return reinterpret_cast<BlockSlabT*>(reinterpret_cast<std::uintptr_t>(block) & ~(SLAB_BYTES - 1));
    }

    static SetT SetOf(void* block) noexcept
    {
        return SetT{1} << (reinterpret_cast<std::uintptr_t>(block) & (SLAB_BYTES - 1)) / BYTES;
    }

    BlockSlabT* next = nullptr; ///< in the store

private:
    static constexpr SetT HELD = 1; // the head is no block

    // Half of them: what cannot be used because a few blocks live long is never more than what is used.
    static bool IsWorthIt(SetT word) noexcept
    {
        return std::popcount(word & ALL) >= static_cast<int>(PLACES / 2);
    }

    std::atomic<SetT> m_word{HELD};
};

template<std::size_t BYTES>
class SlabStoreT
{
public:
    using SlabT = BlockSlabT<BYTES>;
    using SetT = typename SlabT::SetT;

    constexpr SlabStoreT() = default;
    SlabStoreT(const SlabStoreT&) = delete;
    SlabStoreT& operator=(const SlabStoreT&) = delete;

    void Give(SlabT* slab) noexcept
    {
        const HAL::EndShieldC shield; // all others depend on the lock
        const std::lock_guard<HAL::StaticLockC> guard(m_lock);
        slab->next = m_first;
        m_first = slab;
    }

    /// A slab for the caller to hold, and those of its blocks that are free. Throws std::bad_alloc.
    std::pair<SlabT*, SetT> Take()
    {
        const HAL::EndShieldC shield;
        std::unique_lock<HAL::StaticLockC> guard(m_lock);
        if (m_first != nullptr) {
            SlabT* const slab = std::exchange(m_first, m_first->next);
            guard.unlock();
            return {slab, slab->TakeBack()};
        }
        if (m_nLeft == 0) MakeRoom();
        --m_nLeft;
        void* const place = std::exchange(m_room, m_room + SlabT::SLAB_BYTES);
        guard.unlock(); // the first touch of new memory takes its time
        auto* const slab = new (place) SlabT;
        return {slab, slab->Open()};
    }

private:
    static constexpr std::size_t FEWEST = 16;
    static constexpr std::size_t MOST = HAL::s_nLargePageBytes / SlabT::SLAB_BYTES;
    static_assert(HAL::s_nLargePageAlignment % SlabT::SLAB_BYTES == 0);

    void MakeRoom()
    {
        const std::size_t nBytes = m_nNext * SlabT::SLAB_BYTES;
        void* const room = m_nNext == MOST ? HAL::TakeLargePage()
                                           : ::operator new (nBytes, std::align_val_t{SlabT::SLAB_BYTES});
        if (room == nullptr) throw std::bad_alloc();
        m_room = static_cast<unsigned char*>(room);
        m_nLeft = m_nNext;
        m_nNext = std::min(2 * m_nNext, MOST);
    }

    HAL::StaticLockC m_lock; ///< sleeps: a real-time thread that only yields never lets the owner run
    SlabT* m_first = nullptr;
    unsigned char* m_room = nullptr; ///< for slabs that nobody has had
    std::size_t m_nLeft = 0;         ///< of those
    std::size_t m_nNext = FEWEST;    ///< to make room for
};

} // namespace BSS::TSK
