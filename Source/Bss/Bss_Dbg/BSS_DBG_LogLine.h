// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a log line looks like: its prefix, and how a message becomes lines. Pure functions of what they are
// given; they know no clock, no thread, no file. Throw std::bad_alloc only.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace BSS::DBG {

/// What stands before each line of a consumer.
enum class PrefixKind
{
    None = 0,
    Full = 1,    ///< time, thread name, thread id, thread priority, level
    Time = 2,    ///< time alone
    UtcTime = 3, ///< day, month, year and time in UTC, in brackets
};

/// Everything a prefix may tell.
struct LogLineContextT
{
    HAL::CalendarTime localTime;
    HAL::CalendarTime utcTime;
    std::string threadName;
    std::uint32_t threadId = 0;
    int threadPriority = 0;
    int level = 0;
};

/// Local time as "2026-01-31T23:59:58.007".
std::string TimeText(const HAL::CalendarTime& time);

/// `text` behind its prefix.
std::string PrefixedLine(PrefixKind kind, const LogLineContextT& context, const std::string& text);

/// The lines of a message. CR, LF and CR LF end a line; those at the end of the message end the message and
/// begin no further line. Never empty.
std::vector<std::string_view> SplitMessage(std::string_view message);

/// The text with every control character but the tabulator written as "\x1B", so that no message can end a
/// line early, forge another one or command a terminal.
std::string WithoutControls(std::string_view text);

} // namespace BSS::DBG
