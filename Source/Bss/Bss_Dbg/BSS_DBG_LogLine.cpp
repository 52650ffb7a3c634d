// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

namespace BSS::DBG {

namespace {

constexpr std::string_view LINE_ENDS = "\r\n";

std::string UtcPrefix(const HAL::CalendarTime& time)
{
    return UTI::Format("[%02hu/%02hu/%04hu %02hu:%02hu:%02hu.%03hu UTC]", time.day, time.month, time.year,
                       time.hour, time.minute, time.second, time.millisecond);
}

bool IsControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return (code < 0x20 && character != '\t') || code == 0x7F;
}

} // namespace

std::string TimeText(const HAL::CalendarTime& time)
{
    return UTI::Format("%04d-%02d-%02dT%02d:%02d:%02d.%03d", time.year, time.month, time.day, time.hour,
                       time.minute, time.second, time.millisecond);
}

std::string PrefixedLine(PrefixKind kind, const LogLineContextT& context, const std::string& text)
{
    switch (kind) {
    case PrefixKind::Full:
        // The level is followed by the text: it is the sixth value, not a part put behind the prefix.
        return UTI::Format("[%s] %-20s(%s)/%4d %3s %s", TimeText(context.localTime), context.threadName,
                           UTI::Format("%lx", context.threadId), context.threadPriority,
                           LevelText(context.level), text);
    case PrefixKind::Time:
        return UTI::Format("%s ", TimeText(context.localTime)) + text;
    case PrefixKind::UtcTime:
        return UtcPrefix(context.utcTime) + text;
    case PrefixKind::None:
        break;
    }
    return text;
}

std::vector<std::string_view> SplitMessage(std::string_view message)
{
    const std::size_t last = message.find_last_not_of(LINE_ENDS);
    message = message.substr(0, last == std::string_view::npos ? 0 : last + 1);
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = message.find_first_of(LINE_ENDS);
        lines.push_back(message.substr(0, end));
        if (end == std::string_view::npos) return lines;
        const bool pair = message.substr(end, 2) == "\r\n";
        message.remove_prefix(end + (pair ? 2 : 1));
    }
}

std::string WithoutControls(std::string_view text)
{
    std::string clean;
    clean.reserve(text.size());
    for (const char character : text) {
        if (IsControl(character)) {
            clean += UTI::Format("\\x%02X", static_cast<unsigned char>(character));
        } else {
            clean.push_back(character);
        }
    }
    return clean;
}

} // namespace BSS::DBG
