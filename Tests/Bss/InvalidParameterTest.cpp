// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C runtime's complaint about an invalid argument becomes an assertion report.
#include "Bss/BSS_Startup.h"
#include "Bss/Bss_Err/BSS_ERR_InvalidParameter.h"
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>

using namespace BSS;

namespace {

constexpr char TEXT[] = "!\"Invalid parameter handler called!\"";

TEST(InvalidParameter, IsReportedUnderItsFixedNameAndLine)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    ERR::InstallInvalidParameterReport();
    HAL::InvokeInvalidParameterHandler();
    ERR::RestoreInvalidParameterReport();
    EXPECT_EQ(log.Messages(), "<<ASSERT at ..\\..\\Source\\Bss\\Bss_Tsk\\BSS_TSK_Task(446): "
                              "!\"Invalid parameter handler called!\">>\n");
    ASSERT_EQ(reports.Count(TEXT), 1u);
    EXPECT_EQ(reports.Reports()[0].line, 446);
}

TEST(InvalidParameter, IsNotReportedOnceRestored)
{
    const Support::LogCapture log;
    ERR::InstallInvalidParameterReport();
    ERR::RestoreInvalidParameterReport();
    HAL::InvokeInvalidParameterHandler();
    EXPECT_EQ(log.Messages(), "");
}

TEST(InvalidParameter, IsReportedUntilTheLastUserRestoresIt)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    StartUp();
    StartUp();
    ShutDown();
    HAL::InvokeInvalidParameterHandler();
    ShutDown();
    HAL::InvokeInvalidParameterHandler();
    EXPECT_EQ(reports.Count(TEXT), 1u);
}

TEST(InvalidParameter, RestoringWhatWasNeverInstalledIsHarmless)
{
    ShutDown();
    const Support::ReportCapture reports;
    const Support::LogCapture log;
    StartUp();
    HAL::InvokeInvalidParameterHandler();
    ShutDown();
    EXPECT_EQ(reports.Count(TEXT), 1u);
}

} // namespace
