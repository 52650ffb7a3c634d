// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The third example of the page on tasks.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_TimeServiceRequest.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

namespace Examples {

inline int CountedTicks()
{
    constexpr std::int32_t CLIENT = 9;
    BSS::TSK::TskMgr::instance().setTaskOptions(CLIENT, {});

    BSS::TSK::CommandTaskC client({"client", CLIENT, CLIENT, true}, 100);
    client.start();

    int ticks = 0; // touched by the client's thread alone
    BSS::TSK::EventC enough;
    BSS::TSK::TimeServiceRequestC request; // on the timers of the process
    request.addCycleRequest(
        &client, 2, 0,
        [&](std::uint32_t param0) {
            if (++ticks == static_cast<int>(param0)) enough.set();
        },
        5);
    static_cast<void>(enough.wait(-1));

    request.stop(); // before the client or the request goes
    client.stop();
    client.waitForStop(-1);
    return ticks;
}

} // namespace Examples
