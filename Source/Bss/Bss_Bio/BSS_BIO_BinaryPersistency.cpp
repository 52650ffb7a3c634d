// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Bio/BSS_BIO_BinaryPersistency.h"

#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

#include <algorithm>
#include <array>
#include <vector>

namespace BSS::BIO {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Bio\BSS_BIO_BinaryPersistency)";

constexpr std::size_t MAX_UNITS = 0xFFFF;
constexpr std::size_t UNIT_BYTES = 2;

std::vector<std::uint8_t> UnitsOf(const std::wstring& text)
{
    std::vector<std::uint8_t> bytes;
    const auto add = [&bytes](std::uint32_t unit) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    };
    const wchar_t* const end = text.data() + text.size();
    for (const wchar_t* place = text.data(); place != end;) {
        char32_t character = 0;
        place += HAL::DecodeWide(place, end, character);
        if (character <= 0xFFFF) {
            add(character);
        } else {
            add(0xD800 + ((character - 0x10000) >> 10));
            add(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return bytes;
}

std::wstring TextOf(const std::vector<std::uint8_t>& bytes)
{
    const auto unit = [&bytes](std::size_t place) {
        return static_cast<char32_t>(bytes[place] | bytes[place + 1] << 8);
    };
    std::wstring text;
    for (std::size_t place = 0; place < bytes.size(); place += UNIT_BYTES) {
        char32_t character = unit(place);
        const bool bHigh = character >= 0xD800 && character < 0xDC00 && place + UNIT_BYTES < bytes.size();
        const char32_t next = bHigh ? unit(place + UNIT_BYTES) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00);
            place += UNIT_BYTES;
        }
        HAL::AppendWide(text, character);
    }
    return text;
}

} // namespace

BinaryPersistencyC::~BinaryPersistencyC() = default;

void BinaryPersistencyC::writeNumber(const char*, std::uint64_t value, std::size_t size)
{
    checkAlignment(size);
    std::array<std::uint8_t, sizeof(value)> bytes = {};
    for (std::size_t n = 0; n < size; ++n)
        bytes[n] = static_cast<std::uint8_t>(value >> (8 * n));
    writeBytes(bytes.data(), size);
}

std::uint64_t BinaryPersistencyC::readNumber(const char* name, std::size_t size)
{
    checkAlignment(size);
    std::array<std::uint8_t, sizeof(std::uint64_t)> bytes = {};
    readBytes(bytes.data(), size);
    std::uint64_t value = 0;
    for (std::size_t n = 0; n < size; ++n)
        value |= std::uint64_t{bytes[n]} << (8 * n);
    onNumber(name, value, size);
    return value;
}

void BinaryPersistencyC::writeText(const char* lengthName, const std::wstring& text)
{
    const std::vector<std::uint8_t> units = UnitsOf(text);
    const std::size_t count = units.size() / UNIT_BYTES;
    if (count > MAX_UNITS) throw OverflowExceptionC("text too long to be stored");
    write(lengthName, static_cast<std::uint16_t>(count));
    if (!units.empty()) writeBytes(units.data(), units.size());
}

std::wstring BinaryPersistencyC::readText(const char* lengthName)
{
    std::vector<std::uint8_t> units(read<std::uint16_t>(lengthName) * UNIT_BYTES);
    if (!units.empty()) readBytes(units.data(), units.size());
    std::wstring text = TextOf(units);
    onText(lengthName, text);
    return text;
}

void BinaryPersistencyC::checkAlignment(std::size_t size) const
{
    if (!m_bCheckAlignment) return;
    const std::size_t position = getPosition();
    BSS_ASSERT(0 == position % size);
}

void BinaryPersistencyC::writeBytes(const std::uint8_t*, std::size_t)
{
    BSS_ASSERT(!"Write not allowed!");
}

void BinaryPersistencyC::readBytes(std::uint8_t* bytes, std::size_t count)
{
    BSS_ASSERT(!"Read not allowed!");
    std::fill(bytes, bytes + count, std::uint8_t{0});
}

void BinaryPersistencyC::onNumber(const char*, std::uint64_t, std::size_t) {}

void BinaryPersistencyC::onText(const char*, const std::wstring&) {}

} // namespace BSS::BIO
