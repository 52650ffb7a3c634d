// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a task's object and its thread have together, one for each start, so that the thread's last steps need
// no object and a second start meets nothing of the first. For BSS_TSK_Task.cpp only.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Event.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace BSS::DBG {
class DbgLogConsumerC;
} // namespace BSS::DBG

namespace BSS::TSK {

struct TaskRunT
{
    enum class Gate : std::uint32_t
    {
        Closed,
        Open,
        Abandoned ///< the start has failed; the thread goes home
    };

    TaskRunT(std::string taskName, std::shared_ptr<DBG::DbgLogConsumerC> taskLogger)
        : name(std::move(taskName)), logger(std::move(taskLogger))
    {}

    const std::string name;
    const std::shared_ptr<DBG::DbgLogConsumerC> logger;
    std::atomic<std::uint32_t> id{0}; ///< of the thread
    EventC arrived{HAL::ResetMode::Manual};
    std::atomic<Gate> gate{Gate::Closed};
    EventC gateMoved{HAL::ResetMode::Manual}; ///< where the thread waits until start() has published it
    std::atomic<bool> stopped{false};         ///< set by the thread, or by whoever ended it by force
};

} // namespace BSS::TSK
