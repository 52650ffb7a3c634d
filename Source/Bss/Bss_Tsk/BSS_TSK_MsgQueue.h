// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A bounded queue of messages with two priorities: any number of threads push, one takes.
//
// Pushing counts first, never beyond the maximum, and then puts a node on top of a stack by compare-and-swap.
// What has been pushed and what has been taken are counted apart, each by those who do it, so that the two
// sides meet only when the queue is filling. Taking exchanges the whole stack for an empty one, which turns
// into two lists in posting order, one for each priority. Nodes are pushed singly and taken all together, so
// the stack knows no ABA. A full queue refuses, an empty one gives null; neither waits.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

/// What the taking thread has taken off the stack and not yet delivered.
struct TakenMsgsT
{
    struct ListT
    {
        MsgNodeT* first = nullptr;
        MsgNodeT* last = nullptr;
    };

    ListT high;
    ListT normal;
};

class MsgQueueC
{
public:
    /// At least 1.
    explicit MsgQueueC(std::uint32_t maxCount) noexcept;

    /// No thread may push or take any more.
    ~MsgQueueC();
    MsgQueueC(const MsgQueueC&) = delete;
    MsgQueueC& operator=(const MsgQueueC&) = delete;

    /// The number of messages with this one; 0 when the queue is full. As long as it is below one percent of
    /// the maximum it may be told too large, but still below. Throws std::bad_alloc, and the queue is as
    /// before then. Ends with a sequentially consistent read-modify-write.
    std::uint32_t push(const MsgPtrT& msg, bool bHigh);

    /// Whether something has been pushed that take has not yet looked at.
    bool hasPushed() const noexcept { return m_stack.load(std::memory_order_relaxed) != nullptr; }

    /// The next message: the oldest of high priority, else the oldest. Null when there is none; what is
    /// pushed after a sequentially consistent operation that precedes such a call is seen by it.
    MsgPtrT take(TakenMsgsT& taken);

    /// Takes all that has been pushed off the stack and delivers none of it. For the taking thread.
    void collect(TakenMsgsT& taken) noexcept;

    /// The next of those that have been taken off the stack already; null when none of them is left.
    MsgPtrT takeCollected(TakenMsgsT& taken) noexcept;

    /// Takes out and drops the messages of a kind. For the taking thread, or while there is none.
    void remove(TakenMsgsT& taken, MsgKind kind);

    /// Drops what has been taken and not delivered. For the taking thread, or while there is none.
    void drop(TakenMsgsT& taken) noexcept;

    /// Counts what a thread that was ended by force has taken and will never deliver as gone.
    void forget(std::uint32_t count) noexcept { m_taken.fetch_add(count); }

    /// Pushed and not yet taken by take().
    std::int32_t getCount() const noexcept
    {
        const std::uint32_t taken = m_taken.load(); // first: it never passes the other
        return static_cast<std::int32_t>(m_pushed.load() - taken);
    }

    /// All that were ever pushed, modulo 2^32.
    std::uint32_t getPostCount() const noexcept { return m_pushed.load(); }
    std::uint32_t getMaxCount() const noexcept { return m_maxCount; }

private:
    std::uint32_t CountIn();
    void CountOut() noexcept
    {
        // One thread writes, so no read-modify-write is needed.
        m_taken.store(m_taken.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }
    static MsgNodeT* MakeNode(const MsgPtrT& msg, bool bHigh);
    static MsgPtrT Consume(MsgNodeT* node) noexcept;
    MsgPtrT PopFrom(TakenMsgsT::ListT& list) noexcept;

    const std::uint32_t m_maxCount;
    // Both modulo 2^32. The taking thread alone writes the second; the pushing ones keep what they last saw
    // of it.
    alignas(64) std::atomic<std::uint32_t> m_pushed{0};
    std::atomic<std::uint32_t> m_takenSeen{0};
    alignas(64) std::atomic<std::uint32_t> m_taken{0};
    alignas(64) std::atomic<MsgNodeT*> m_stack{nullptr};
    // Apart from the stack, so that the taking thread need not touch it for every message.
    alignas(64) std::atomic<bool> m_bHighPushed{false};
};

} // namespace BSS::TSK
