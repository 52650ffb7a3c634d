// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a log line looks like: its prefix, and how a message becomes lines. Pure functions of what they are
// given; they know no clock, no thread, no file. Throw std::bad_alloc only.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace BSS::DBG {

/// What stands before each line of a consumer. Any other number is no prefix.
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

/// The message without the line ends at its end.
inline std::string_view WithoutLineEnd(std::string_view message) noexcept
{
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
        message.remove_suffix(1);
    return message;
}

/// True when the text is one line that can be written as it stands: no control character but the tabulator,
/// and nothing but ASCII.
bool IsPlainLine(std::string_view text) noexcept;

/// The text with everything written as "\x1B" that could end a line early, forge another one or command a
/// terminal: control characters but the tabulator, line and paragraph separators, marks that turn the
/// direction of writing, and bytes that are not UTF-8. The result is valid UTF-8.
std::string WithoutControls(std::string_view text);

/// The text in one line, ended by "\n", whatever it contains: for the debugger output.
std::string AsOneLine(std::string_view text);

/// How much of the text is at most `most` bytes and ends between two characters.
std::size_t WholeCharacters(std::string_view text, std::size_t most) noexcept;

/// The longest name that lines show, in bytes.
inline constexpr std::size_t LONGEST_SHOWN_NAME = 128;

/// A consumer's name as lines show it: without controls; a longer one is cut and ends in "...".
std::string ShownName(std::string_view name);

/// How a message becomes the lines of a consumer.
struct LogLayoutT
{
    std::string_view name;        ///< of the consumer, as ShownName makes it
    std::string_view prefix;      ///< before each line
    bool bareLines = false;       ///< lines of a message bear neither name nor number
    std::size_t maxLineBytes = 0; ///< of a line with its end; a longer one is continued in the next
};

/// All lines of a message, each with its prefix and ended by "\n". A message of one line is written as it is.
/// The lines of a longer one are numbered: "name: 001, text". What continues the line before it begins with
/// "(continued) ".
std::string LinesOfMessage(const LogLayoutT& layout, std::string_view message);

} // namespace BSS::DBG
