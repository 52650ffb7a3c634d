// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The first example of the page on tasks.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Task.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

#include <atomic>
#include <boost/thread/thread_only.hpp>

namespace Examples {

class HeartbeatC final : public BSS::TSK::TaskC
{
public:
    explicit HeartbeatC(BSS::TSK::TaskSettingsT settings) : TaskC(std::move(settings)) {}

    std::atomic<int> beats{0};

protected:
    void main() override
    {
        for (;;) {
            ++beats;
            boost::this_thread::sleep_for(boost::chrono::milliseconds(1)); // where stop() ends it
        }
    }
};

inline int Heartbeats(int wanted)
{
    constexpr std::int32_t BACKGROUND = 7;
    BSS::TSK::TskMgr::instance().setTaskOptions(BACKGROUND, {0, 256 * 1024}); // priority, stack in bytes

    HeartbeatC heartbeat({"heartbeat", BACKGROUND, BACKGROUND, true});
    heartbeat.start();
    while (heartbeat.beats < wanted)
        boost::this_thread::yield();
    heartbeat.stop();
    heartbeat.waitForStop(-1);
    return heartbeat.beats;
}

} // namespace Examples
