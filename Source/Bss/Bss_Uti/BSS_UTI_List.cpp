// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_List.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Uti/BSS_UTI_Node.h"

#include <cstdint>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_List)";

std::uint32_t LowBits(const void* pointer) noexcept
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer));
}

} // namespace

ListC::~ListC()
{
    while (m_pFirst != nullptr)
        remove(*m_pFirst);
}

void ListC::append(NodeC& node)
{
    if (node.m_pList != nullptr) {
        BSS_PANIC("W: ~ListC(this = 0x%lx, newnode = 0x%lx): node in two lists?\r\n", 0, LowBits(this),
                  LowBits(&node));
        return;
    }
    node.m_pList = this;
    node.m_pPrevious = m_pLast;
    (m_pLast != nullptr ? m_pLast->m_pNext : m_pFirst) = &node;
    m_pLast = &node;
    ++m_nNodes;
}

void ListC::remove(NodeC& node) noexcept
{
    if (node.m_pList != this) return;
    (node.m_pPrevious != nullptr ? node.m_pPrevious->m_pNext : m_pFirst) = node.m_pNext;
    (node.m_pNext != nullptr ? node.m_pNext->m_pPrevious : m_pLast) = node.m_pPrevious;
    node.m_pNext = nullptr;
    node.m_pPrevious = nullptr;
    node.m_pList = nullptr;
    --m_nNodes;
}

} // namespace BSS::UTI
