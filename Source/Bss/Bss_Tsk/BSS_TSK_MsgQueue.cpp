// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_MsgQueue.h"

#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace BSS::TSK {

namespace {

constexpr std::uint64_t ONE_POST = (std::uint64_t{1} << 32) + 1;

static_assert(sizeof(MsgNodeT) <= BlockPool::BLOCK_BYTES);

MsgPtrT Consume(MsgNodeT* node) noexcept
{
    MsgPtrT msg = std::move(node->msg);
    std::destroy_at(node);
    BlockPool::Free(node);
    return msg;
}

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
    Collect(taken);
    drop(taken);
}

std::uint32_t MsgQueueC::push(const MsgPtrT& msg, bool bHigh)
{
    std::uint64_t counter = m_counter.load(std::memory_order_relaxed);
    do {
        if (static_cast<std::uint32_t>(counter) >= m_maxCount) return 0;
    } while (!m_counter.compare_exchange_weak(counter, counter + ONE_POST, std::memory_order_relaxed));
    MsgNodeT* node = nullptr;
    try {
        node = new (BlockPool::Allocate()) MsgNodeT{nullptr, msg, bHigh};
    } catch (...) {
        m_counter.fetch_sub(ONE_POST);
        throw;
    }
    node->next = m_stack.load(std::memory_order_relaxed);
    // Pairs with the exchange in Collect, which sees the node as it is here.
    while (!m_stack.compare_exchange_weak(node->next, node)) {
    }
    if (bHigh) m_bHighPushed.store(true);
    return static_cast<std::uint32_t>(counter) + 1;
}

MsgPtrT MsgQueueC::take(TakenMsgsT& taken)
{
    if (m_bHighPushed.load()) {
        // Cleared before the stack is looked at: a node whose flag this takes away is in the stack.
        m_bHighPushed.store(false);
        Collect(taken);
    }
    if (taken.high.first == nullptr && taken.normal.first == nullptr) Collect(taken);
    if (taken.high.first != nullptr) return PopFrom(taken.high);
    if (taken.normal.first != nullptr) return PopFrom(taken.normal);
    return {};
}

void MsgQueueC::remove(TakenMsgsT& taken, MsgKind kind)
{
    Collect(taken);
    for (TakenMsgsT::ListT* list : {&taken.high, &taken.normal}) {
        TakenMsgsT::ListT kept;
        while (MsgNodeT* const node = list->first) {
            list->first = node->next;
            node->next = nullptr;
            if (node->msg->getKind() != kind) {
                Append(kept, node, node);
            } else {
                Consume(node);
                m_counter.fetch_sub(1);
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

void MsgQueueC::Collect(TakenMsgsT& taken) noexcept
{
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
    m_counter.fetch_sub(1, std::memory_order_relaxed);
    return Consume(node);
}

} // namespace BSS::TSK
