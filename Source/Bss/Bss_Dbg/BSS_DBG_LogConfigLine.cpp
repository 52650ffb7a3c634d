// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The numbers are read as the scan format "%*[ \t\r\n]%d%*[ \t\r\n]%u%*[ \t\r\n]%u" reads them, with two
// exceptions, for which it is done by hand: a number too large, of which that leaves open what it becomes,
// and a minus sign before one of the last two, which that turns into a huge size, end the reading.
#include "Bss/Bss_Dbg/BSS_DBG_LogConfigLine.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <charconv>
#include <system_error>

namespace BSS::DBG {

namespace {

constexpr std::string_view WHITE = " \t\r\n";

std::string_view Trimmed(std::string_view text) noexcept
{
    const std::size_t first = text.find_first_not_of(WHITE);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(WHITE) - first + 1);
}

// White space, at least one, and a number behind it.
template<typename NumberT>
bool TakeNumber(std::string_view& text, std::optional<NumberT>& number) noexcept
{
    const std::size_t begin = text.find_first_not_of(WHITE);
    if (begin == 0 || begin == std::string_view::npos) return false;
    std::string_view digits = text.substr(begin);
    const bool plus = digits.size() > 1 && digits[0] == '+' && digits[1] != '-';
    if (plus) digits.remove_prefix(1);
    NumberT value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc()) return false;
    number = value;
    text = std::string_view(stopped, static_cast<std::size_t>(end - stopped));
    return true;
}

// Takes what it understands off the text.
std::optional<LogSettingsT> TakeLogSettings(std::string_view& text)
{
    LogSettingsT settings;
    if (!TakeLevelWord(text, settings.level)) return std::nullopt;
    static_cast<void>(TakeNumber(text, settings.prefixKind) && TakeNumber(text, settings.limitKib) &&
                      TakeNumber(text, settings.nOlderFiles));
    return settings;
}

} // namespace

std::optional<LogSettingsT> ParseLogSettings(std::string_view text)
{
    return TakeLogSettings(text);
}

bool IsEmptyLogConfigLine(std::string_view line) noexcept
{
    line = Trimmed(line);
    return line.empty() || line.front() == '#' || line.front() == ';';
}

std::optional<LogConfigLineT> ParseLogConfigLine(std::string_view line)
{
    const std::size_t equals = line.find('=');
    if (IsEmptyLogConfigLine(line) || equals == std::string_view::npos) return std::nullopt;
    const std::string_view name = Trimmed(line.substr(0, equals));
    std::string_view rest = Trimmed(line.substr(equals + 1));
    const std::optional<LogSettingsT> settings = TakeLogSettings(rest);
    if (name.empty() || !settings) return std::nullopt;
    return LogConfigLineT{std::string(name), *settings, std::string(Trimmed(rest))};
}

} // namespace BSS::DBG
