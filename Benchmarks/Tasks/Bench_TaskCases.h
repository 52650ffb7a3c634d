// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cases of locks, tasks and timers.
#pragma once

#include "Bench_Harness.h"

#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"

#include <memory>
#include <string>
#include <vector>

namespace Bench {

void RunMutex(const OptionsT& options);
void RunSemaphore(const OptionsT& options);
void RunPost(const OptionsT& options);
void RunLatency(const OptionsT& options);
void RunBusy(const OptionsT& options);
void RunTimerSet(const OptionsT& options);
void RunTimerLate(const OptionsT& options);

/// A task without a log, at normal priority.
inline std::unique_ptr<BSS::TSK::CommandTaskC> MakeTask(std::uint32_t uiMaximum)
{
    constexpr std::int32_t OPTION = 1;
    BSS::TSK::TskMgr::instance().setTaskOptions(OPTION, {0, 0});
    auto task = std::make_unique<BSS::TSK::CommandTaskC>(
        BSS::TSK::TaskSettingsT{"bench", OPTION, OPTION, true, false, {}}, uiMaximum);
    task->start();
    return task;
}

inline void EndTask(BSS::TSK::CommandTaskC& task)
{
    task.stop();
    task.waitForStop(-1);
}

/// Prints one ratio of medians and what is asked of it.
void PrintRatio(const std::string& strWhat, double dRatio, const char* pszAsked);

} // namespace Bench
