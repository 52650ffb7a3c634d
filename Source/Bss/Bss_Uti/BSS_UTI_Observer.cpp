// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Uti/BSS_UTI_ObserverLink.h"

namespace BSS::UTI {

ObserverC::ObserverC() : m_link(std::make_shared<ObserverLinkT>())
{
    m_link->pObserver = this;
}

ObserverC::~ObserverC()
{
    ObserverC::detachAll();
}

void ObserverC::detachAll() noexcept
{
    const TSK::GuardC guard(m_link->lock);
    m_link->pObserver = nullptr;
}

} // namespace BSS::UTI
