// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_TaskOptions.h"

#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

#include <utility>

namespace BSS::NET {

TSK::TaskSettingsT NetTaskSettings(const std::string& name, std::shared_ptr<DBG::DbgLogConsumerC> logger)
{
    // Once, so that what a program sets later stays.
    static const bool s_bSet = [] {
        TSK::TskMgr::instance().setTaskOptions(NET_TASK_OPTION, {0, 0});
        return true;
    }();
    static_cast<void>(s_bSet);
    return {name, NET_TASK_OPTION, NET_TASK_OPTION, true, false, std::move(logger)};
}

} // namespace BSS::NET
