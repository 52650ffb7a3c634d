// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A bounded queue of messages with two priorities: any number of threads push, one takes.
//
// Pushing counts first, by compare-and-swap and never beyond the maximum, and then puts a node on top of a
// stack, by compare-and-swap. Taking exchanges the whole stack for an empty one, which turns into two lists
// in posting order, one for each priority. Nodes are pushed singly and taken all together, so the stack knows
// no ABA. A full queue refuses, an empty one gives null; neither waits.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

struct MsgNodeT
{
    MsgNodeT* next;
    MsgPtrT msg;
    bool bHigh;
};

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

    /// The number of messages with this one; 0 when the queue is full. Throws std::bad_alloc, and the queue
    /// is as before then. Ends with a sequentially consistent read-modify-write.
    std::uint32_t push(const MsgPtrT& msg, bool bHigh);

    /// The next message: the oldest of high priority, else the oldest. Null when there is none; what is
    /// pushed after a sequentially consistent operation that precedes such a call is seen by it.
    MsgPtrT take(TakenMsgsT& taken);

    /// Takes out and drops the messages of a kind. For the taking thread, or while there is none.
    void remove(TakenMsgsT& taken, MsgKind kind);

    /// Drops what has been taken and not delivered. For the taking thread, or while there is none.
    void drop(TakenMsgsT& taken) noexcept;

    /// Counts what a thread that was ended by force has taken and will never deliver as gone.
    void forget(std::uint32_t count) noexcept { m_counter.fetch_sub(count); }

    /// Pushed and not yet taken by take().
    std::int32_t getCount() const noexcept { return static_cast<std::int32_t>(m_counter.load()); }

    /// All that were ever pushed, modulo 2^32.
    std::uint32_t getPostCount() const noexcept { return static_cast<std::uint32_t>(m_counter.load() >> 32); }
    std::uint32_t getMaxCount() const noexcept { return m_maxCount; }

private:
    void Collect(TakenMsgsT& taken) noexcept;
    MsgPtrT PopFrom(TakenMsgsT::ListT& list) noexcept;

    const std::uint32_t m_maxCount;
    // Both counts in one word, so that a post pays for one: the current one in the low half, all posts in the
    // high.
    alignas(64) std::atomic<std::uint64_t> m_counter{0};
    alignas(64) std::atomic<MsgNodeT*> m_stack{nullptr};
    // Apart from the stack, so that the taking thread need not touch it for every message.
    alignas(64) std::atomic<bool> m_bHighPushed{false};
};

} // namespace BSS::TSK
