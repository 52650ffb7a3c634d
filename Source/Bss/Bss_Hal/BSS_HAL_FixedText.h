// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Text of a bounded length that is put together without the heap, the locale or any call: for code that runs
// where a process has just crashed. What does not fit is left out. For one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace BSS::HAL {

template<typename CharT, std::size_t CAPACITY>
class FixedTextT
{
public:
    /// Always ends with a null character.
    const CharT* getText() const noexcept { return m_text.data(); }
    std::size_t getLength() const noexcept { return m_length; }
    void clear() noexcept { cut(0); }

    /// Takes the end away again.
    void cut(std::size_t length) noexcept
    {
        if (length < m_length) m_length = length;
        m_text[m_length] = 0;
    }

    FixedTextT& add(CharT character) noexcept
    {
        if (m_length < CAPACITY) m_text[m_length++] = character;
        m_text[m_length] = 0;
        return *this;
    }
    /// Of another width of character the text must be ASCII.
    template<typename OtherT>
    FixedTextT& add(const OtherT* text) noexcept
    {
        while (*text != 0)
            add(static_cast<CharT>(*text++));
        return *this;
    }

    /// With zeros in front up to `nDigits`.
    FixedTextT& addNumber(std::uint64_t value, std::size_t nDigits = 1, std::uint64_t base = 10) noexcept
    {
        std::array<CharT, 64> digits = {};
        std::size_t count = 0;
        for (; value != 0 || count < nDigits; value /= base)
            digits[count++] = static_cast<CharT>("0123456789abcdef"[value % base]);
        while (count > 0)
            add(digits[--count]);
        return *this;
    }

private:
    std::array<CharT, CAPACITY + 1> m_text = {};
    std::size_t m_length = 0;
};

} // namespace BSS::HAL
