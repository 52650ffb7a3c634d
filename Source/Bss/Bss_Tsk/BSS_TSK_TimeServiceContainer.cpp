// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceContainer.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeRequest.h"

namespace BSS::TSK {

TimeServiceContainerC& TimeServiceContainerC::instance()
{
    // Never destroyed: timers may fire until the very end.
    static auto* const container = new TimeServiceContainerC;
    return *container;
}

void TimeServiceContainerC::attach(const std::shared_ptr<TimeRequestT>& request)
{
    const GuardC guard(m_lock);
    m_requests.insert(request);
}

void TimeServiceContainerC::detach(const std::shared_ptr<TimeRequestT>& request) noexcept
{
    const GuardC guard(m_lock);
    m_requests.erase(request);
}

std::size_t TimeServiceContainerC::getCount() const
{
    const GuardC guard(m_lock);
    return m_requests.size();
}

std::string TimeServiceContainerC::dump() const
{
    std::set<std::shared_ptr<TimeRequestT>> requests;
    {
        // A request takes its own lock before this one.
        const GuardC guard(m_lock);
        requests = m_requests;
    }
    std::string text;
    for (const std::shared_ptr<TimeRequestT>& request : requests)
        text += request->Dump();
    return text;
}

} // namespace BSS::TSK
