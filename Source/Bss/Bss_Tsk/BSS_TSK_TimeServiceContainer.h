// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The time service requests that are attached at this moment, for looking at all of them at once. Safe from
// any thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <cstddef>
#include <memory>
#include <set>
#include <string>

namespace BSS::TSK {

struct TimeRequestT;

class TimeServiceContainerC
{
public:
    /// The one of the process.
    static TimeServiceContainerC& instance();

    void attach(const std::shared_ptr<TimeRequestT>& request);
    void detach(const std::shared_ptr<TimeRequestT>& request) noexcept;
    std::size_t getCount() const;

    /// The dumps of all of them.
    std::string dump() const;

private:
    mutable MutexC m_lock;
    std::set<std::shared_ptr<TimeRequestT>> m_requests;
};

} // namespace BSS::TSK
