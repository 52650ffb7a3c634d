// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Numbers in strings. A number is a few ASCII characters, so it goes through a narrow copy; a text that is
// none is refused before. See the header.
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace BSS::UTI {

namespace {

constexpr std::size_t LONGEST_NUMBER = 2048; // with more digits than any number needs
constexpr std::wstring_view WHITE = L" \t\r\n\v\f";

std::optional<std::string> AsciiOf(std::wstring_view text)
{
    const std::size_t first = text.find_first_not_of(WHITE);
    if (first == std::wstring_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(WHITE) - first + 1);
    if (text.size() > LONGEST_NUMBER) return std::nullopt;
    std::string narrow;
    for (const wchar_t character : text) {
        if (character >= 0x80) return std::nullopt;
        narrow.push_back(static_cast<char>(character));
    }
    if (narrow.size() > 1 && narrow[0] == '+' && narrow[1] != '-') narrow.erase(0, 1);
    return narrow;
}

void DropHexPrefix(std::string& text)
{
    const std::size_t at = text.starts_with('-') ? 1 : 0;
    const bool prefixed =
        text.size() > at + 2 && text[at] == '0' && (text[at + 1] == 'x' || text[at + 1] == 'X');
    if (prefixed && text[at + 2] != '-') text.erase(at, 2);
}

template<typename NumberT>
bool ReadInteger(std::wstring_view text, NumberT& value, int base)
{
    std::optional<std::string> digits = AsciiOf(text);
    if (!digits || base < 2 || base > 36) return false;
    if (base == 16) DropHexPrefix(*digits);
    NumberT read = 0;
    const char* const end = digits->data() + digits->size();
    const auto [stopped, error] = std::from_chars(digits->data(), end, read, base);
    if (error != std::errc() || stopped != end) return false;
    value = read;
    return true;
}

template<typename... NumberT>
StringC Written(NumberT... number)
{
    char digits[80];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, number...);
    return StringC(std::wstring(digits, result.ptr));
}

} // namespace

bool StringC::ToNumber(std::int32_t& value, int base) const
{
    return ReadInteger(View(), value, base);
}

bool StringC::ToNumber(std::uint32_t& value, int base) const
{
    return ReadInteger(View(), value, base);
}

bool StringC::ToNumber(std::int64_t& value, int base) const
{
    return ReadInteger(View(), value, base);
}

bool StringC::ToNumber(std::uint64_t& value, int base) const
{
    return ReadInteger(View(), value, base);
}

bool StringC::ToNumber(double& value) const
{
    const std::optional<std::string> digits = AsciiOf(View());
    if (!digits) return false;
    double read = 0;
    const char* const end = digits->data() + digits->size();
    const auto [stopped, error] = std::from_chars(digits->data(), end, read);
    if (error != std::errc() || stopped != end) return false;
    value = read;
    return true;
}

StringC StringC::FromSigned(std::int64_t value, int base)
{
    return base < 2 || base > 36 ? StringC() : Written(value, base);
}

StringC StringC::FromUnsigned(std::uint64_t value, int base)
{
    return base < 2 || base > 36 ? StringC() : Written(value, base);
}

StringC StringC::FromNumber(double value)
{
    return Written(value);
}

} // namespace BSS::UTI
