// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The half that is the same on every platform: checking, and UTF-8. Other code pages are asked of the
// platform's half.
#include "Bss/Bss_Hal/BSS_HAL_CodePage.h"

#include "Bss/Bss_Hal/BSS_HAL_CodePageSystem.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

#include <cstddef>
#include <limits>
#include <string>

namespace BSS::HAL {

namespace {

constexpr char32_t REPLACEMENT = 0xFFFD;

// Counts what it is given and keeps as much of it as there is room for.
template<typename CharT>
class SinkT
{
public:
    SinkT(CharT* destination, int length) noexcept
        : m_destination(destination), m_room(static_cast<std::size_t>(length))
    {}

    void Put(char32_t unit) noexcept
    {
        if (m_count < m_room) m_destination[m_count] = static_cast<CharT>(unit);
        ++m_count;
    }

    int Result(CodePageError& error) const noexcept
    {
        const bool counting = m_room == 0;
        const bool expressible = m_count <= static_cast<std::size_t>(std::numeric_limits<int>::max());
        error =
            expressible && (counting || m_count <= m_room) ? CodePageError::None : CodePageError::TooSmall;
        return error == CodePageError::None ? static_cast<int>(m_count) : 0;
    }

private:
    CharT* m_destination;
    std::size_t m_room;
    std::size_t m_count = 0;
};

bool IsCharacter(char32_t value) noexcept
{
    return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

void PutWide(SinkT<wchar_t>& sink, char32_t character) noexcept
{
    if (sizeof(wchar_t) == 2 && character >= 0x10000) {
        sink.Put(0xD800 + ((character - 0x10000) >> 10));
        sink.Put(0xDC00 + ((character - 0x10000) & 0x3FF));
    } else {
        sink.Put(character);
    }
}

void PutUtf8(SinkT<char>& sink, char32_t character) noexcept
{
    if (character < 0x80) {
        sink.Put(character);
        return;
    }
    int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    const char32_t lead = following == 1 ? 0xC0 : following == 2 ? 0xE0 : 0xF0;
    sink.Put(lead | (character >> (6 * following)));
    while (following-- > 0)
        sink.Put(0x80 | ((character >> (6 * following)) & 0x3F));
}

template<typename CharT>
std::size_t CountOf(const CharT* source, int length) noexcept
{
    return length >= 0 ? static_cast<std::size_t>(length) : std::char_traits<CharT>::length(source) + 1;
}

bool IsInvalid(const void* source, int sourceLength, const void* destination, int destinationLength) noexcept
{
    return source == nullptr || sourceLength == 0 || sourceLength < -1 || destinationLength < 0 ||
           (destination == nullptr && destinationLength > 0);
}

} // namespace

int NarrowToWide(std::uint32_t codePage, const char* source, int sourceLength, wchar_t* destination,
                 int destinationLength, CodePageError& error) noexcept
{
    error = CodePageError::Invalid;
    if (IsInvalid(source, sourceLength, destination, destinationLength)) return 0;
    if (!IsUtf8CodePage(codePage))
        return SystemNarrowToWide(codePage, source, sourceLength, destination, destinationLength, error);
    SinkT<wchar_t> sink(destination, destinationLength);
    const char* const end = source + CountOf(source, sourceLength);
    while (source != end) {
        char32_t character = REPLACEMENT;
        const std::size_t length = DecodeUtf8(source, end, character);
        PutWide(sink, length == 0 ? REPLACEMENT : character);
        source += length == 0 ? 1 : length;
    }
    return sink.Result(error);
}

int WideToNarrow(std::uint32_t codePage, const wchar_t* source, int sourceLength, char* destination,
                 int destinationLength, CodePageError& error) noexcept
{
    error = CodePageError::Invalid;
    if (IsInvalid(source, sourceLength, destination, destinationLength)) return 0;
    if (!IsUtf8CodePage(codePage))
        return SystemWideToNarrow(codePage, source, sourceLength, destination, destinationLength, error);
    SinkT<char> sink(destination, destinationLength);
    const wchar_t* const end = source + CountOf(source, sourceLength);
    while (source != end) {
        char32_t character = 0;
        source += DecodeWide(source, end, character);
        PutUtf8(sink, IsCharacter(character) ? character : REPLACEMENT);
    }
    return sink.Result(error);
}

} // namespace BSS::HAL
