// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One conversion of a format, taken apart: "%-08.3llx" becomes flags, width, precision, size and letter. For
// the formatter only. Knows nothing of arguments except that a star takes an integer.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace BSS::UTI {

enum class FormatSize
{
    Default,
    Char,
    Short,
    Long,
    LongLong,
    Pointer,
    Wide,
    LongDouble
};

template<typename CharT>
struct FormatSpecT
{
    bool left = false;
    bool plus = false;
    bool space = false;
    bool alternate = false;
    bool zero = false;
    int width = 0;
    int precision = -1; ///< negative: none given
    FormatSize size = FormatSize::Default;
    CharT letter = 0;
};

/// Reads the conversion behind a percent sign, letter by letter.
template<typename CharT, typename SourceT>
class FormatSpecReaderT
{
public:
    FormatSpecReaderT(const CharT* at, SourceT& source) noexcept : m_at(at), m_source(source) {}

    /// Reads up to and with the letter, whatever it is. False at a star that has no argument.
    bool Read(FormatSpecT<CharT>& spec)
    {
        while (ReadFlag(spec))
            ++m_at;
        if (!ReadNumber(spec.width)) return false;
        if (spec.width < 0) {
            spec.left = true;
            spec.width = spec.width == std::numeric_limits<int>::min() ? 0 : -spec.width;
        }
        if (Accept('.')) {
            spec.precision = 0;
            if (!ReadNumber(spec.precision)) return false;
        }
        spec.size = ReadSize();
        spec.letter = *m_at;
        return true;
    }

    /// Where reading stopped: at the letter.
    const CharT* Position() const noexcept { return m_at; }

private:
    bool Accept(char wanted) noexcept
    {
        if (*m_at != static_cast<CharT>(wanted)) return false;
        ++m_at;
        return true;
    }

    bool ReadFlag(FormatSpecT<CharT>& spec) noexcept
    {
        switch (*m_at) {
        case '-':
            return spec.left = true;
        case '+':
            return spec.plus = true;
        case ' ':
            return spec.space = true;
        case '#':
            return spec.alternate = true;
        case '0':
            return spec.zero = true;
        default:
            return false;
        }
    }

    bool ReadNumber(int& number)
    {
        if (Accept('*')) {
            std::uint64_t taken = 0;
            if (!m_source.TakeInteger(4, taken)) return false;
            number = static_cast<std::int32_t>(taken);
            return true;
        }
        std::int64_t value = 0;
        for (; *m_at >= '0' && *m_at <= '9'; ++m_at) {
            value = std::min<std::int64_t>(value * 10 + (*m_at - '0'), std::numeric_limits<int>::max());
        }
        number = static_cast<int>(value);
        return true;
    }

    FormatSize ReadSize() noexcept
    {
        if (Accept('h')) return Accept('h') ? FormatSize::Char : FormatSize::Short;
        if (Accept('l')) return Accept('l') ? FormatSize::LongLong : FormatSize::Long;
        if (Accept('w')) return FormatSize::Wide;
        if (Accept('L')) return FormatSize::LongDouble;
        if (Accept('j')) return FormatSize::LongLong;
        if (Accept('z') || Accept('t')) return FormatSize::Pointer;
        if (!Accept('I')) return FormatSize::Default;
        if (m_at[0] == '6' && m_at[1] == '4') return m_at += 2, FormatSize::LongLong;
        if (m_at[0] == '3' && m_at[1] == '2') return m_at += 2, FormatSize::Long;
        return FormatSize::Pointer;
    }

    const CharT* m_at;
    SourceT& m_source;
};

} // namespace BSS::UTI
