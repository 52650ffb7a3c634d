// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The standard library's conversions, which know no locale.
#include "Tools/Qsb/Tool_Numerals.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace Tool {

namespace {

template<typename T>
std::optional<T> Parse(std::string_view text) noexcept
{
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<double> ParseInteger(std::string_view text, NumberTypeT eType) noexcept
{
    // Every integer type fits 64 bits; "12.0" and "1e3" are whole numbers too.
    const std::optional<std::int64_t> oWhole = Parse<std::int64_t>(text);
    const std::optional<double> oValue = oWhole ? static_cast<double>(*oWhole) : Parse<double>(text);
    const bool bFits = oValue && *oValue >= LeastOf(eType) && *oValue <= GreatestOf(eType);
    return bFits && *oValue == std::trunc(*oValue) ? oValue : std::nullopt;
}

} // namespace

std::optional<double> ParseNumber(std::string_view text, NumberTypeT eType) noexcept
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    if (!IsFloating(eType)) return ParseInteger(text, eType);
    if (eType == NumberTypeT::Double) return Parse<double>(text);
    const std::optional<float> oValue = Parse<float>(text);
    return oValue ? std::optional<double>(*oValue) : std::nullopt;
}

std::optional<std::uint64_t> ParseCount(std::string_view text) noexcept
{
    return Parse<std::uint64_t>(text);
}

void AppendNumber(std::string& text, double dValue, NumberTypeT eType)
{
    char acDigits[32];
    std::to_chars_result result{acDigits, std::errc()};
    if (std::isnan(dValue)) {
        text += "nan"; // No sign, which to_chars would write.
    } else if (eType == NumberTypeT::Double) {
        result = std::to_chars(acDigits, std::end(acDigits), dValue);
    } else if (eType == NumberTypeT::Float) {
        result = std::to_chars(acDigits, std::end(acDigits), static_cast<float>(dValue));
    } else {
        result = std::to_chars(acDigits, std::end(acDigits), static_cast<std::int64_t>(dValue));
    }
    text.append(acDigits, result.ptr);
}

} // namespace Tool
