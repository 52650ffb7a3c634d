// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr std::uint32_t CHAIN = 32;
constexpr std::uint32_t MOST_KEPT = 2 * CHAIN;

// For the few steps of giving or taking a chain. There before any code has run and after all destructors
// have.
class SpinLockC
{
public:
    void lock() noexcept
    {
        for (int round = 0; m_held.test_and_set(std::memory_order_acquire); ++round) {
            if (round < ROUNDS) {
                HAL::SpinPause();
            } else {
                std::this_thread::yield(); // its owner does not run
            }
        }
    }
    void unlock() noexcept { m_held.clear(std::memory_order_release); }

private:
    static constexpr int ROUNDS = 100;

    std::atomic_flag m_held;
};

struct BlockT
{
    BlockT* next;
    BlockT* nextChain; ///< in the first block of a chain in the store
};

// The chains that no thread keeps. Blocks are made in slabs of one chain, so that those which are used one
// after the other lie beside each other. The slabs are kept for good: threads that were let go may give
// blocks back until the very end.
template<std::size_t BYTES>
class StoreC
{
public:
    constexpr StoreC() = default;
    StoreC(const StoreC&) = delete;
    StoreC& operator=(const StoreC&) = delete;

    void Give(BlockT* chain) noexcept
    {
        const std::lock_guard<SpinLockC> guard(m_lock);
        chain->nextChain = m_first;
        m_first = chain;
    }

    /// A chain of blocks. Throws std::bad_alloc.
    BlockT* Take()
    {
        const std::lock_guard<SpinLockC> guard(m_lock);
        if (m_first != nullptr) return std::exchange(m_first, m_first->nextChain);
        auto* const slab = static_cast<SlabT*>(::operator new(sizeof(SlabT), ALIGNMENT));
        slab->next = m_slabs;
        m_slabs = slab;
        for (std::size_t i = 0; i < CHAIN; ++i)
            new (slab->bytes + i * BYTES) BlockT{
                i + 1 < CHAIN ? reinterpret_cast<BlockT*>(slab->bytes + (i + 1) * BYTES) : nullptr, nullptr};
        return reinterpret_cast<BlockT*>(slab->bytes);
    }

private:
    static constexpr std::align_val_t ALIGNMENT{64};

    struct SlabT
    {
        alignas(64) unsigned char bytes[CHAIN * BYTES];
        SlabT* next;
    };

    SpinLockC m_lock;
    BlockT* m_first = nullptr;
    SlabT* m_slabs = nullptr;
};

enum class Life : std::uint8_t
{
    Unused,
    Used,
    Over // the thread's cleanup has run; nothing is kept any more
};

constinit thread_local Life t_life = Life::Unused;

void NoteThread() noexcept;

// The blocks of one size.
template<std::size_t BYTES>
class SizeC
{
    static_assert(BYTES >= sizeof(BlockT));

public:
    static void* Allocate()
    {
        if (t_kept == nullptr) Refill();
        --t_nKept;
        return std::exchange(t_kept, t_kept->next);
    }

    static void Free(void* block) noexcept
    {
        auto* const freed = static_cast<BlockT*>(block);
        if (t_life == Life::Over) {
            freed->next = nullptr;
            s_store.Give(freed);
            return;
        }
        if (t_life == Life::Unused) NoteThread();
        freed->next = t_kept;
        t_kept = freed;
        if (++t_nKept > static_cast<std::int32_t>(MOST_KEPT)) GiveChain();
    }

    // At the thread's end.
    static void GiveAll() noexcept
    {
        if (t_kept != nullptr) s_store.Give(std::exchange(t_kept, nullptr));
        t_nKept = 0;
    }

private:
    static void Refill()
    {
        if (t_life == Life::Unused) NoteThread();
        if (HAL::TakeFault(HAL::FaultT::PoolMemory)) throw std::bad_alloc();
        t_kept = s_store.Take();
        t_nKept = static_cast<std::int32_t>(CHAIN); // a few more or less do no harm
    }

    static void GiveChain() noexcept
    {
        BlockT* const chain = t_kept;
        BlockT* last = chain;
        for (std::uint32_t i = 1; i < CHAIN && last->next != nullptr; ++i)
            last = last->next;
        t_kept = std::exchange(last->next, nullptr);
        t_nKept -= static_cast<std::int32_t>(CHAIN);
        s_store.Give(chain);
    }

    static constinit StoreC<BYTES> s_store;
    static constinit thread_local BlockT* t_kept;
    static constinit thread_local std::int32_t t_nKept; ///< about
};

template<std::size_t BYTES>
constinit StoreC<BYTES> SizeC<BYTES>::s_store;
template<std::size_t BYTES>
constinit thread_local BlockT* SizeC<BYTES>::t_kept = nullptr;
template<std::size_t BYTES>
constinit thread_local std::int32_t SizeC<BYTES>::t_nKept = 0;

using SmallT = SizeC<BlockPool::SMALL_BYTES>;
using LargeT = SizeC<BlockPool::LARGE_BYTES>;

struct ThreadEndC
{
    ~ThreadEndC()
    {
        t_life = Life::Over;
        SmallT::GiveAll();
        LargeT::GiveAll();
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
