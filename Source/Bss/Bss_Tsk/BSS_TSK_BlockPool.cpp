// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace BSS::TSK {

namespace {

struct BlockT
{
    BlockT* next;
};

constexpr std::uint32_t MOST_KEPT = 64;
constexpr std::uint32_t CHAIN = 32;

// The blocks that no thread keeps, freed with the library.
class ReturnedC
{
public:
    constexpr ReturnedC() = default;
    ~ReturnedC()
    {
        for (BlockT* block = TakeAll(); block != nullptr;) {
            BlockT* const next = block->next;
            ::operator delete(block);
            block = next;
        }
    }
    ReturnedC(const ReturnedC&) = delete;
    ReturnedC& operator=(const ReturnedC&) = delete;

    void Push(BlockT* first, BlockT* last) noexcept
    {
        last->next = m_top.load(std::memory_order_relaxed);
        // Release pairs with TakeAll: the blocks' last use is over before the next one begins.
        while (!m_top.compare_exchange_weak(last->next, first, std::memory_order_release,
                                            std::memory_order_relaxed)) {
        }
    }

    BlockT* TakeAll() noexcept
    {
        if (m_top.load(std::memory_order_relaxed) == nullptr) return nullptr;
        return m_top.exchange(nullptr, std::memory_order_acquire);
    }

private:
    alignas(64) std::atomic<BlockT*> m_top{nullptr};
};

constinit ReturnedC s_returned;

enum class Life : std::uint8_t
{
    Unused,
    Used,
    Over // the thread's cleanup has run; nothing is kept any more
};

// What a thread keeps. The taken chain is as long as it is; what is kept of freed blocks is counted.
constinit thread_local BlockT* t_taken = nullptr;
constinit thread_local BlockT* t_kept = nullptr;
constinit thread_local std::uint32_t t_nKept = 0;
constinit thread_local Life t_life = Life::Unused;

void ReturnChain(BlockT* first) noexcept
{
    if (first == nullptr) return;
    BlockT* last = first;
    while (last->next != nullptr)
        last = last->next;
    s_returned.Push(first, last);
}

struct ThreadEndC
{
    ~ThreadEndC()
    {
        t_life = Life::Over;
        ReturnChain(t_kept);
        ReturnChain(t_taken);
        t_kept = nullptr;
        t_taken = nullptr;
        t_nKept = 0;
    }
};

void NoteThread() noexcept
{
    static thread_local const ThreadEndC end;
    static_cast<void>(&end);
    t_life = Life::Used;
}

// Gives back one chain of what has been freed here and keeps the rest.
void ReturnSome() noexcept
{
    BlockT* last = t_kept;
    for (std::uint32_t i = 1; i < CHAIN; ++i)
        last = last->next;
    BlockT* const first = t_kept;
    t_kept = last->next;
    t_nKept -= CHAIN;
    s_returned.Push(first, last);
}

} // namespace

void* BlockPool::Allocate()
{
    if (t_kept != nullptr) {
        BlockT* const block = t_kept;
        t_kept = block->next;
        --t_nKept;
        return block;
    }
    if (t_taken == nullptr && t_life != Life::Over) {
        if (t_life == Life::Unused) NoteThread();
        t_taken = s_returned.TakeAll();
    }
    if (t_taken == nullptr) return ::operator new(BLOCK_BYTES);
    BlockT* const block = t_taken;
    t_taken = block->next;
    return block;
}

void BlockPool::Free(void* block) noexcept
{
    auto* const freed = static_cast<BlockT*>(block);
    if (t_life == Life::Over) {
        s_returned.Push(freed, freed);
        return;
    }
    if (t_life == Life::Unused) NoteThread();
    freed->next = t_kept;
    t_kept = freed;
    if (++t_nKept > MOST_KEPT) ReturnSome();
}

} // namespace BSS::TSK
