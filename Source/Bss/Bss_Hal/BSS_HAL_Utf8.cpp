// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The second byte alone decides between strict and overlong, surrogate or out-of-range forms,
// so each lead byte carries the range its second byte may have.
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

namespace BSS::HAL {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;
constexpr char32_t LAST_CHARACTER = 0x10FFFF;
constexpr char32_t ESCAPED_BYTE_BASE = 0xDC00;

struct LeadByte
{
    std::size_t length; // 0: no character begins with this byte
    unsigned char secondMin;
    unsigned char secondMax;
    unsigned char payload;
};

constexpr LeadByte ClassifyLead(unsigned char lead) noexcept
{
    if (lead < 0x80) return {1, 0, 0, lead};
    const auto low5 = static_cast<unsigned char>(lead & 0x1F);
    const auto low4 = static_cast<unsigned char>(lead & 0x0F);
    const auto low3 = static_cast<unsigned char>(lead & 0x07);
    if (lead < 0xC2) return {0, 0, 0, 0};
    if (lead < 0xE0) return {2, 0x80, 0xBF, low5};
    if (lead == 0xE0) return {3, 0xA0, 0xBF, low4};
    if (lead == 0xED) return {3, 0x80, 0x9F, low4};
    if (lead < 0xF0) return {3, 0x80, 0xBF, low4};
    if (lead == 0xF0) return {4, 0x90, 0xBF, low3};
    if (lead < 0xF4) return {4, 0x80, 0xBF, low3};
    if (lead == 0xF4) return {4, 0x80, 0x8F, low3};
    return {0, 0, 0, 0};
}

constexpr bool IsHighSurrogate(char32_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char32_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendByte(std::string& text, char32_t byte)
{
    text.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
}

} // namespace

std::size_t DecodeUtf8(const char* begin, const char* end, char32_t& character) noexcept
{
    if (begin == end) return 0;
    const LeadByte lead = ClassifyLead(static_cast<unsigned char>(*begin));
    if (lead.length == 0 || static_cast<std::size_t>(end - begin) < lead.length) return 0;
    char32_t value = lead.payload;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto next = static_cast<unsigned char>(begin[i]);
        const unsigned char least = i == 1 ? lead.secondMin : 0x80;
        const unsigned char most = i == 1 ? lead.secondMax : 0xBF;
        if (next < least || next > most) return 0;
        value = (value << 6) | (next & 0x3Fu);
    }
    character = value;
    return lead.length;
}

std::size_t DecodeWide(const wchar_t* begin, const wchar_t* end, char32_t& character) noexcept
{
    if (begin == end) return 0;
    character = static_cast<char32_t>(begin[0]);
    if (sizeof(wchar_t) != 2 || !IsHighSurrogate(character) || end - begin < 2) return 1;
    const auto low = static_cast<char32_t>(begin[1]);
    if (!IsLowSurrogate(low)) return 1;
    character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
    return 2;
}

bool IsUtf8(std::string_view text) noexcept
{
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        char32_t character = 0;
        const std::size_t length = DecodeUtf8(at, end, character);
        if (length == 0) return false;
        at += length;
    }
    return true;
}

std::string_view WithoutByteOrderMark(std::string_view text) noexcept
{
    constexpr std::string_view MARK = "\xEF\xBB\xBF";
    return text.starts_with(MARK) ? text.substr(MARK.size()) : text;
}

void AppendUtf8(std::string& text, char32_t character)
{
    if (character > LAST_CHARACTER) character = REPLACEMENT;
    if (character < 0x80) {
        AppendByte(text, character);
    } else if (character >= ESCAPED_BYTE_BASE + 0x80 && character <= ESCAPED_BYTE_BASE + 0xFF) {
        AppendByte(text, character - ESCAPED_BYTE_BASE);
    } else if (character < 0x800) {
        AppendByte(text, 0xC0 | (character >> 6));
        AppendByte(text, 0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        AppendByte(text, 0xE0 | (character >> 12));
        AppendByte(text, 0x80 | ((character >> 6) & 0x3F));
        AppendByte(text, 0x80 | (character & 0x3F));
    } else {
        AppendByte(text, 0xF0 | (character >> 18));
        AppendByte(text, 0x80 | ((character >> 12) & 0x3F));
        AppendByte(text, 0x80 | ((character >> 6) & 0x3F));
        AppendByte(text, 0x80 | (character & 0x3F));
    }
}

void AppendWide(std::wstring& text, char32_t character)
{
    if (sizeof(wchar_t) == 2 && character >= 0x10000) {
        text.push_back(static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10)));
        text.push_back(static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    } else {
        text.push_back(static_cast<wchar_t>(character));
    }
}

std::wstring WideFromUtf8(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        char32_t character = 0;
        std::size_t length = DecodeUtf8(at, end, character);
        if (length == 0) {
            character = ESCAPED_BYTE_BASE + static_cast<unsigned char>(*at);
            length = 1;
        }
        AppendWide(wide, character);
        at += length;
    }
    return wide;
}

std::string Utf8FromWide(std::wstring_view text)
{
    std::string narrow;
    narrow.reserve(text.size());
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    while (at != end) {
        char32_t character = 0;
        at += DecodeWide(at, end, character);
        AppendUtf8(narrow, character);
    }
    return narrow;
}

} // namespace BSS::HAL
