// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <cstring>

namespace BSS::DBG {

namespace {

constexpr std::string_view LINE_ENDS = "\r\n";
constexpr std::string_view CUT_NAME = "...";
constexpr std::string_view CONTINUED = "(continued) ";
constexpr std::size_t LEAST_TEXT = 16; // of a line, however small the limit

std::string UtcPrefix(const HAL::CalendarTime& time)
{
    return UTI::Format("[%02hu/%02hu/%04hu %02hu:%02hu:%02hu.%03hu UTC]", time.day, time.month, time.year,
                       time.hour, time.minute, time.second, time.millisecond);
}

bool IsHarmful(char32_t character)
{
    const bool control = (character < 0x20 && character != '\t') || (character >= 0x7F && character < 0xA0);
    const bool separator = character == 0x2028 || character == 0x2029;
    const bool direction = character == 0x061C || character == 0x200E || character == 0x200F ||
                           (character >= 0x202A && character <= 0x202E) ||
                           (character >= 0x2066 && character <= 0x2069);
    return control || separator || direction;
}

bool IsPlain(char character) noexcept
{
    return (character >= ' ' && character <= '~') || character == '\t';
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
    message = WithoutLineEnd(message);
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = message.find_first_of(LINE_ENDS);
        lines.push_back(message.substr(0, end));
        if (end == std::string_view::npos) return lines;
        const bool pair = message.substr(end, 2) == "\r\n";
        message.remove_prefix(end + (pair ? 2 : 1));
    }
}

// Eight bytes in one step. Each of the three terms sets the highest bit of a byte that is not printable; the
// sums reach into a byte beside only where they have found one already.
bool IsPlainLine(std::string_view text) noexcept
{
    constexpr std::uint64_t ONES = 0x0101010101010101u;
    const char* const begin = text.data();
    const std::size_t length = text.size();
    const auto strangeAt = [begin](std::size_t at) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, begin + at, sizeof eight);
        return (eight | (eight + ONES) | (eight - ONES * ' ')) & ONES * 0x80;
    };
    if (length < 8) return std::all_of(text.begin(), text.end(), &IsPlain);
    std::uint64_t strange = strangeAt(length - 8);
    for (std::size_t at = 0; at + 8 < length; at += 8)
        strange |= strangeAt(at);
    return strange == 0 || std::all_of(text.begin(), text.end(), &IsPlain); // a tabulator is plain too
}

std::string WithoutControls(std::string_view text)
{
    std::string clean;
    clean.reserve(text.size());
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        char32_t character = 0;
        const std::size_t length = HAL::DecodeUtf8(at, end, character);
        if (length > 0 && !IsHarmful(character)) {
            clean.append(at, length);
            at += length;
            continue;
        }
        const char* const next = at + std::max<std::size_t>(length, 1);
        for (; at != next; ++at)
            clean += UTI::Format("\\x%02X", static_cast<unsigned char>(*at));
    }
    return clean;
}

std::string AsOneLine(std::string_view text)
{
    return WithoutControls(WithoutLineEnd(text)) + '\n';
}

std::size_t WholeCharacters(std::string_view text, std::size_t most) noexcept
{
    if (text.size() <= most) return text.size();
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return end > 0 ? end : most;
}

std::string ShownName(std::string_view name)
{
    std::string shown = WithoutControls(name);
    if (shown.size() <= LONGEST_SHOWN_NAME) return shown;
    shown.resize(WholeCharacters(shown, LONGEST_SHOWN_NAME - CUT_NAME.size()));
    return (shown += CUT_NAME);
}

std::string LinesOfMessage(const LogLayoutT& layout, std::string_view message)
{
    const std::vector<std::string_view> parts = SplitMessage(message);
    const std::size_t overhead =
        layout.prefix.size() + layout.name.size() + CONTINUED.size() + sizeof ": 000000, \n";
    const std::size_t most =
        layout.maxLineBytes > overhead + LEAST_TEXT ? layout.maxLineBytes - overhead : LEAST_TEXT;
    std::string lines;
    unsigned number = 0;
    for (const std::string_view part : parts) {
        const std::string clean = WithoutControls(part);
        const bool alone = parts.size() == 1 && clean.size() <= most;
        std::string_view rest = clean;
        bool continued = false;
        do {
            const std::size_t length = WholeCharacters(rest, most);
            lines += layout.prefix;
            if (!alone && !layout.bareLines) (lines += layout.name) += UTI::Format(": %03d, ", ++number);
            if (continued) lines += CONTINUED;
            (lines += rest.substr(0, length)) += '\n';
            rest.remove_prefix(length);
            continued = true;
        } while (!rest.empty());
    }
    return lines;
}

} // namespace BSS::DBG
