// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_Node.h"

#include "Bss/Bss_Uti/BSS_UTI_List.h"

namespace BSS::UTI {

NodeC::~NodeC()
{
    if (m_pList != nullptr) m_pList->remove(*this);
}

NodeC* NodeC::getNext() const noexcept
{
    return m_pNext;
}

NodeC* NodeC::getPrevious() const noexcept
{
    return m_pPrevious;
}

} // namespace BSS::UTI
