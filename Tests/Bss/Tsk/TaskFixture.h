// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Tasks for tests: their option entry, and a task whose work is given.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Task.h"
#include "Bss/Bss_Tsk/BSS_TSK_TskMgr.h"
#include "Support/LogCapture.h"
#include "Support/LogRecorder.h"
#include "Support/ReportCapture.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace TaskTests {

inline constexpr std::int32_t OPTION = 4711;

/// Keeps reports and the system error log out of the way, and the option table filled.
class TaskTest : public testing::Test
{
protected:
    TaskTest() { BSS::TSK::TskMgr::instance().setTaskOptions(OPTION, {0, 0}); }
    ~TaskTest() override { BSS::TSK::TskMgr::instance().removeTaskOptions(OPTION); }

    BSS::TSK::TaskSettingsT Settings(const std::string& name = "test task") const
    {
        return {name, OPTION, OPTION, true, false, log};
    }

    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    const std::shared_ptr<Support::LogRecorder> log = std::make_shared<Support::LogRecorder>();
};

class WorkTaskC final : public BSS::TSK::TaskC
{
public:
    WorkTaskC(BSS::TSK::TaskSettingsT settings, std::function<void()> work)
        : TaskC(std::move(settings)), m_work(std::make_shared<std::function<void()>>(std::move(work)))
    {}
    using TaskC::setFriendlyKillLimit;

protected:
    void main() override
    {
        const auto work = m_work; // the object may go while it runs
        (*work)();
    }

private:
    std::shared_ptr<std::function<void()>> m_work;
};

} // namespace TaskTests
