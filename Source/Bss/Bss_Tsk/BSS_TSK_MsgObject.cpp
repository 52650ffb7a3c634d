// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"

#include "Bss/Bss_Tsk/BSS_TSK_BlockPool.h"

#include <atomic>

namespace BSS::TSK {

namespace {

constexpr std::int32_t IDS_PER_THREAD = 256;

constinit std::atomic<std::uint32_t> s_nextIds{0};
constinit thread_local std::uint32_t t_nextId = 0;

} // namespace

// Threads draw ids in rows, so that posting threads do not meet at the counter.
std::int32_t NextCmdReqId() noexcept
{
    if (t_nextId % IDS_PER_THREAD == 0)
        t_nextId = s_nextIds.fetch_add(IDS_PER_THREAD, std::memory_order_relaxed);
    return static_cast<std::int32_t>(++t_nextId);
}

MsgObjectI::MsgObjectI(MsgKind kind, const char* pszCmdClientType) noexcept
    : m_iCmdReqId(NextCmdReqId()), m_pszCmdClientType(pszCmdClientType), m_kind(kind)
{}

MsgObjectI::~MsgObjectI() = default;

void* MsgObjectI::operator new(std::size_t bytes)
{
    return BlockPool::Allocate(bytes);
}

void MsgObjectI::operator delete(void* message, std::size_t bytes) noexcept
{
    BlockPool::Free(message, bytes);
}

} // namespace BSS::TSK
