// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log that holds whoever logs one certain line, so that a test can do something between that line and what
// comes after it.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Support/LogRecorder.h"

#include <string>
#include <string_view>
#include <utility>

namespace TaskTests {

class HoldingLogC final : public Support::LogRecorder
{
public:
    /// The line is the one whose format begins so.
    explicit HoldingLogC(std::string beginning) : m_beginning(std::move(beginning)) {}

    void logFormatted(int level, const char* format, BSS::UTI::FormatSourceI& arguments) override
    {
        LogRecorder::logFormatted(level, format, arguments);
        if (!std::string_view(format).starts_with(m_beginning)) return;
        entered.set();
        static_cast<void>(leave.wait(20000));
    }

    BSS::TSK::EventC entered{BSS::HAL::ResetMode::Manual};
    BSS::TSK::EventC leave{BSS::HAL::ResetMode::Manual};

private:
    const std::string m_beginning;
};

} // namespace TaskTests
