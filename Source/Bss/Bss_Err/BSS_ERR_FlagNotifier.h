// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tells subscribed callbacks every new value of a flag. Safe from any thread. Callbacks run on the notifying
// thread, in the order of subscription, with none of the notifier's locks held, so they may subscribe and
// unsubscribe; a callback that is unsubscribed by another thread may still be told the value that is just
// being passed on.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace BSS::ERR {

class FlagNotifierC
{
public:
    using CallbackT = std::function<void(bool)>;

    FlagNotifierC() = default;
    ~FlagNotifierC();
    FlagNotifierC(const FlagNotifierC&) = delete;
    FlagNotifierC& operator=(const FlagNotifierC&) = delete;

    /// Returns the number under which the callback can be unsubscribed; never 0. An empty callback gets a
    /// number too and is not called.
    std::uint32_t Subscribe(CallbackT callback);

    /// Does nothing when the number is not known.
    void Unsubscribe(std::uint32_t id);

    void Notify(bool flag) const;

private:
    using SubscriptionT = std::pair<std::uint32_t, CallbackT>;

    mutable TSK::MutexC m_lock;
    std::vector<SubscriptionT> m_subscriptions;
    std::uint32_t m_lastId = 0;
};

} // namespace BSS::ERR
