// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A binary that links the automatic start need not say StartUp itself. An executable of its own, as all
// others must not link it.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>

namespace {

TEST(AutoStart, InvalidParametersAreReportedFromTheStart)
{
    const Support::LogCapture log;
    const Support::ReportCapture reports;
    BSS::HAL::InvokeInvalidParameterHandler();
    EXPECT_EQ(reports.Count("!\"Invalid parameter handler called!\""), 1u);
}

} // namespace
