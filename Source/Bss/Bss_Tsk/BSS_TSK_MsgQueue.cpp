// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_MsgQueue.h"

#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include <algorithm>
#include <new>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr std::uint32_t MOST_THREADS = 1u << 16; // more will never push at the same moment

static_assert(sizeof(MsgNodeT) <= BlockPool::SMALL_BYTES);

void Append(TakenMsgsT::ListT& list, MsgNodeT* first, MsgNodeT* last) noexcept
{
    if (first == nullptr) return;
    (list.last != nullptr ? list.last->next : list.first) = first;
    list.last = last;
}

} // namespace

MsgQueueC::MsgQueueC(std::uint32_t maxCount) noexcept : m_maxCount(std::clamp(maxCount, 1u, 0x7FFFFFFFu)) {}

MsgQueueC::~MsgQueueC()
{
    TakenMsgsT taken;
    collect(taken);
    drop(taken);
}

// What was last seen of the taken count is never too high, so the count is never told too low. Acquire pairs
// with the taking thread's release: whoever sees a message as taken sees it as pushed too.
std::uint32_t MsgQueueC::CountIn()
{
    std::uint32_t taken = m_takenSeen.load(std::memory_order_acquire);
    std::uint32_t pushed = m_pushed.load(std::memory_order_relaxed);
    for (;;) {
        if (std::uint64_t{pushed - taken} * 100 >= m_maxCount) {
            taken = m_taken.load(std::memory_order_acquire);
            m_takenSeen.store(taken, std::memory_order_release);
            pushed = m_pushed.load(std::memory_order_relaxed);
        }
        // Far from the maximum nobody can go beyond it.
        if (m_maxCount > MOST_THREADS && pushed - taken < m_maxCount - MOST_THREADS)
            return m_pushed.fetch_add(1, std::memory_order_relaxed) - taken + 1;
        if (pushed - taken >= m_maxCount) return 0;
        if (m_pushed.compare_exchange_weak(pushed, pushed + 1, std::memory_order_relaxed))
            return pushed - taken + 1;
    }
}

// The node holds one of the message's users.
MsgNodeT* MsgQueueC::MakeNode(const MsgPtrT& msg, bool bHigh)
{
    // Acquire pairs with the release in Consume: whoever had the node before is done with it.
    MsgNodeT* const node = !msg->m_bNodeInUse.exchange(true, std::memory_order_acquire)
                               ? &msg->m_node
                               : new (BlockPool::Allocate(sizeof(MsgNodeT))) MsgNodeT;
    node->bHigh = bHigh;
    node->bOwn = node == &msg->m_node;
    node->msg = MsgPtrT(msg).detach();
    return node;
}

MsgPtrT MsgQueueC::Consume(MsgNodeT* node) noexcept
{
    MsgPtrT msg = MsgPtrT::Adopt(node->msg);
    if (node->bOwn) {
        msg->m_bNodeInUse.store(false, std::memory_order_release);
    } else {
        BlockPool::Free(node, sizeof *node);
    }
    return msg;
}

std::uint32_t MsgQueueC::push(const MsgPtrT& msg, bool bHigh)
{
    const std::uint32_t count = CountIn();
    if (count == 0) return 0;
    MsgNodeT* node = nullptr;
    try {
        node = MakeNode(msg, bHigh);
    } catch (...) {
        m_pushed.fetch_sub(1);
        throw;
    }
    node->next = m_stack.load(std::memory_order_relaxed);
    // Pairs with the exchange in Collect, which sees the node as it is here.
    while (!m_stack.compare_exchange_weak(node->next, node)) {
    }
    if (bHigh) m_bHighPushed.store(true);
    return count;
}

MsgPtrT MsgQueueC::take(TakenMsgsT& taken)
{
    if (m_bHighPushed.load()) {
        // Cleared before the stack is looked at: a node whose flag this takes away is in the stack.
        m_bHighPushed.store(false);
        collect(taken);
    }
    if (taken.high.first == nullptr && taken.normal.first == nullptr) collect(taken);
    return takeCollected(taken);
}

MsgPtrT MsgQueueC::takeCollected(TakenMsgsT& taken) noexcept
{
    if (taken.high.first != nullptr) return PopFrom(taken.high);
    if (taken.normal.first != nullptr) return PopFrom(taken.normal);
    return {};
}

void MsgQueueC::remove(TakenMsgsT& taken, MsgKind kind)
{
    collect(taken);
    for (TakenMsgsT::ListT* list : {&taken.high, &taken.normal}) {
        TakenMsgsT::ListT kept;
        while (MsgNodeT* const node = list->first) {
            list->first = node->next;
            node->next = nullptr;
            if (node->msg->getKind() != kind) {
                Append(kept, node, node);
            } else {
                Consume(node);
                CountOut();
            }
        }
        *list = kept;
    }
}

void MsgQueueC::drop(TakenMsgsT& taken) noexcept
{
    while (taken.high.first != nullptr)
        PopFrom(taken.high);
    while (taken.normal.first != nullptr)
        PopFrom(taken.normal);
}

void MsgQueueC::collect(TakenMsgsT& taken) noexcept
{
    const HAL::EndShieldC shield; // what is neither in the stack nor taken would stay counted for ever
    struct ChainT
    {
        MsgNodeT* first = nullptr;
        MsgNodeT* last = nullptr;
    } high, normal;
    for (MsgNodeT* node = m_stack.exchange(nullptr); node != nullptr;) {
        MsgNodeT* const older = node->next;
        ChainT& chain = node->bHigh ? high : normal;
        node->next = chain.first;
        if (chain.last == nullptr) chain.last = node;
        chain.first = node;
        node = older;
    }
    Append(taken.high, high.first, high.last);
    Append(taken.normal, normal.first, normal.last);
}

MsgPtrT MsgQueueC::PopFrom(TakenMsgsT::ListT& list) noexcept
{
    MsgNodeT* const node = list.first;
    list.first = node->next;
    if (list.first == nullptr) list.last = nullptr;
    if (list.first != nullptr) __builtin_prefetch(list.first);
    CountOut();
    return Consume(node);
}

} // namespace BSS::TSK
