// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_FlagNotifier.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

namespace BSS::ERR {

FlagNotifierC::~FlagNotifierC() = default;

std::uint32_t FlagNotifierC::Subscribe(CallbackT callback)
{
    const TSK::GuardC guard(m_lock);
    m_subscriptions.emplace_back(++m_lastId, std::move(callback));
    return m_lastId;
}

void FlagNotifierC::Unsubscribe(std::uint32_t id)
{
    const TSK::GuardC guard(m_lock);
    std::erase_if(m_subscriptions, [id](const SubscriptionT& each) { return each.first == id; });
}

void FlagNotifierC::Notify(bool flag) const
{
    std::vector<SubscriptionT> snapshot;
    {
        const TSK::GuardC guard(m_lock);
        snapshot = m_subscriptions;
    }
    for (const SubscriptionT& each : snapshot) {
        if (each.second) each.second(flag);
    }
}

} // namespace BSS::ERR
