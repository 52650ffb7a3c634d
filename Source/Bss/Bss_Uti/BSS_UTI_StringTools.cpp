// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_StringTools.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_StringTools)";

bool IsText(const void* lpsz)
{
    BSS_ASSERT(0 != lpsz);
    return lpsz != nullptr;
}

const wchar_t* XmlOf(wchar_t character) noexcept
{
    switch (character) {
    case L'\'':
        return L"&apos;";
    case L'"':
        return L"&quot;";
    case L'&':
        return L"&amp;";
    case L'<':
        return L"&lt;";
    case L'>':
        return L"&gt;";
    default:
        return nullptr;
    }
}

bool CanBeShown(wchar_t character) noexcept
{
    return character >= 0x20 && character < 0x7F && character != L'\\';
}

std::wstring HexOf(wchar_t character)
{
    const auto code = static_cast<std::uint32_t>(character);
    if (code <= 0xFF) return Format(L"\\x%02X", code);
    return code <= 0xFFFF ? Format(L"\\u%04X", code) : Format(L"\\U%08X", code);
}

int DigitsOf(wchar_t letter) noexcept
{
    if (letter == L'x') return 2;
    if (letter == L'u') return 4;
    return letter == L'U' ? 8 : 0;
}

int HexDigit(wchar_t character) noexcept
{
    if (character >= L'0' && character <= L'9') return character - L'0';
    if (character >= L'A' && character <= L'F') return character - L'A' + 10;
    return character >= L'a' && character <= L'f' ? character - L'a' + 10 : -1;
}

// Reads the escape that the text begins with; its length, or 0 when there is none.
std::size_t ReadEscape(std::wstring_view text, std::uint32_t& code) noexcept
{
    if (text.size() < 2 || text[0] != L'\\') return 0;
    const auto digits = static_cast<std::size_t>(DigitsOf(text[1]));
    if (digits == 0 || text.size() < 2 + digits) return 0;
    std::uint32_t value = 0;
    for (std::size_t i = 2; i < 2 + digits; ++i) {
        const int digit = HexDigit(text[i]);
        if (digit < 0) return 0;
        value = (value << 4) | static_cast<std::uint32_t>(digit);
    }
    const bool expressible = value != 0 && value <= 0x7FFFFFFF && (sizeof(wchar_t) == 4 || value <= 0xFFFF);
    code = value;
    return expressible ? 2 + digits : 0;
}

// Where the text can be cut so that at most `most` bytes of whole characters are left.
std::size_t WholeCharacters(std::string_view text, std::size_t most) noexcept
{
    if (text.size() <= most) return text.size();
    std::size_t end = 0;
    while (end < most) {
        char32_t character = 0;
        const std::size_t length = std::max<std::size_t>(
            HAL::DecodeUtf8(text.data() + end, text.data() + text.size(), character), 1);
        if (end + length > most) break;
        end += length;
    }
    return end;
}

ResultCodeT Copy(std::string_view text, char* buffer, std::size_t size) noexcept
{
    const std::size_t length = WholeCharacters(text, size - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
    return length == text.size() ? RC_OK : RC_BUFFER_TOO_SMALL;
}

template<typename CharT>
void Append(CharT* buffer, std::size_t size, const CharT* lpsz)
{
    if (!IsText(buffer) || !IsText(lpsz)) return;
    const auto used = static_cast<std::size_t>(std::find(buffer, buffer + size, CharT(0)) - buffer);
    const std::basic_string_view<CharT> part(lpsz);
    if (part.size() >= size - used) {
        BSS_PANIC("String buffer overflow", PANIC_TYPE, 0, 0);
        return;
    }
    std::copy_n(lpsz, part.size() + 1, buffer + used);
}

} // namespace

StringC StringTools::EscapeXml(const StringC& text)
{
    const std::wstring_view characters = text.View();
    if (characters.find_first_of(L"'\"&<>") == std::wstring_view::npos) return text;
    std::wstring escaped;
    for (const wchar_t character : characters) {
        const wchar_t* const name = XmlOf(character);
        if (name != nullptr) {
            escaped += name;
        } else {
            escaped += character;
        }
    }
    return StringC(escaped);
}

StringC StringTools::EscapeHex(const StringC& text)
{
    const std::wstring_view characters = text.View();
    if (std::all_of(characters.begin(), characters.end(), &CanBeShown)) return text;
    std::wstring escaped;
    for (const wchar_t character : characters) {
        if (CanBeShown(character)) {
            escaped += character;
        } else {
            escaped += HexOf(character);
        }
    }
    return StringC(escaped);
}

StringC StringTools::UnescapeHex(const StringC& text)
{
    std::wstring_view rest = text.View();
    if (rest.find(L'\\') == std::wstring_view::npos) return text;
    std::wstring plain;
    while (!rest.empty()) {
        std::uint32_t code = 0;
        const std::size_t length = ReadEscape(rest, code);
        plain += length > 0 ? static_cast<wchar_t>(code) : rest.front();
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return StringC(plain);
}

ResultCodeT StringTools::CopyToBuffer(const char* lpsz, char* buffer, std::size_t size)
{
    const bool text = IsText(lpsz);
    if (buffer == nullptr || size == 0) return RC_INVALID_ARGUMENT;
    *buffer = '\0';
    return text ? Copy(lpsz, buffer, size) : RC_INVALID_ARGUMENT;
}

ResultCodeT StringTools::CopyToBuffer(const StringC& text, char* buffer, std::size_t size)
{
    if (buffer == nullptr || size == 0) return RC_INVALID_ARGUMENT;
    return Copy(HAL::Utf8FromWide(text.View()), buffer, size);
}

void StringTools::AppendToBuffer(char* buffer, std::size_t size, const char* lpsz)
{
    Append(buffer, size, lpsz);
}

void StringTools::AppendToBuffer(wchar_t* buffer, std::size_t size, const wchar_t* lpsz)
{
    Append(buffer, size, lpsz);
}

} // namespace BSS::UTI
