// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"
#include "Bss/Bss_Uti/BSS_UTI_ObserverLink.h"

#include <algorithm>

namespace BSS::UTI {

SubjectC::SubjectC() = default;

SubjectC::~SubjectC() = default;

void SubjectC::attach(ObserverC& observer)
{
    const TSK::GuardC guard(m_lock);
    if (std::find(m_links.begin(), m_links.end(), observer.m_link) == m_links.end())
        m_links.push_back(observer.m_link);
}

void SubjectC::detach(ObserverC& observer) noexcept
{
    {
        const TSK::GuardC guard(m_lock);
        std::erase(m_links, observer.m_link);
    }
    // Waits for a notification that is running on another thread.
    const TSK::GuardC guard(observer.m_link->lock);
}

void SubjectC::notify(std::uint32_t code, const RefPtrT<SharedObjectC>& payload)
{
    LinksT links;
    {
        const TSK::GuardC guard(m_lock);
        if (m_links.empty()) return;
        links = m_links;
    }
    LinksT gone;
    for (const std::shared_ptr<ObserverLinkT>& link : links) {
        const TSK::GuardC guard(link->lock);
        {
            // It may have been detached since the list was copied.
            const TSK::GuardC own(m_lock);
            if (std::find(m_links.begin(), m_links.end(), link) == m_links.end()) continue;
        }
        if (link->pObserver != nullptr) link->pObserver->update(*this, code, payload);
        if (link->pObserver == nullptr) gone.push_back(link);
    }
    // The lock of a link comes before the subject's, so this is done when none of them is held.
    const TSK::GuardC guard(m_lock);
    for (const std::shared_ptr<ObserverLinkT>& link : gone)
        std::erase(m_links, link);
}

std::size_t SubjectC::getObserverCount() const
{
    const TSK::GuardC guard(m_lock);
    return m_links.size();
}

} // namespace BSS::UTI
