// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the formatter puts its text: a buffer of the caller's. What does not fit is cut, unless a derived
// class takes the full buffer away and makes room. Knows nothing of formats. Belongs to one thread. Throws
// nothing of its own.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace BSS::UTI {

template<typename CharT>
class FormatOutT
{
public:
    /// Writes to at most `capacity` characters from `buffer` on; no terminator is written.
    FormatOutT(CharT* buffer, std::size_t capacity) noexcept
        : m_begin(buffer), m_at(buffer), m_end(buffer + capacity)
    {}
    virtual ~FormatOutT() = default;
    FormatOutT(const FormatOutT&) = delete;
    FormatOutT& operator=(const FormatOutT&) = delete;

    void Put(const CharT* text, std::size_t count)
    {
        while (count > Room()) {
            const std::size_t part = Room();
            m_at = std::copy_n(text, part, m_at);
            text += part;
            count -= part;
            if (!MakeRoom()) return;
        }
        m_at = std::copy_n(text, count, m_at);
    }

    void Put(CharT character)
    {
        if (Room() == 0 && !MakeRoom()) return;
        *m_at++ = character;
    }

    void Fill(CharT character, std::size_t count)
    {
        while (count > Room()) {
            count -= Room();
            m_at = std::fill_n(m_at, Room(), character);
            if (!MakeRoom()) return;
        }
        m_at = std::fill_n(m_at, count, character);
    }

    /// Puts out what comes before the first percent sign or `textEnd`, and says where that is.
    const CharT* PutPlain(const CharT* text, const CharT* textEnd)
    {
        for (;;) {
            CopyPlain(text, textEnd, m_at, m_end);
            if (text == textEnd || *text == '%' || !MakeRoom()) return text;
        }
    }

    /// Copies plain text up to the first percent sign, `textEnd` or `end`, whatever comes first, and moves
    /// both places on. `at` is a copy in registers; characters beyond it, but not beyond `end`, may be
    /// overwritten.
    static void CopyPlain(const CharT*& text, const CharT* textEnd, CharT*& at, CharT* end) noexcept
    {
        const CharT* from = text;
        CharT* to = at;
        if constexpr (sizeof(CharT) == 1 && std::endian::native == std::endian::little)
            CopyPlainByEights(from, textEnd, to, end);
        while (to != end && from != textEnd && *from != '%')
            *to++ = *from++;
        text = from;
        at = to;
    }

    /// Where the next character goes and where the room ends, for who writes there himself; Advance says how
    /// far he came.
    CharT* At() noexcept { return m_at; }
    CharT* End() noexcept { return m_end; }
    void Advance(CharT* at) noexcept { m_at = at; }

    /// Characters below 128, one unit each.
    void PutAscii(const char* text, std::size_t count)
    {
        if constexpr (sizeof(CharT) == 1) {
            Put(text, count);
        } else {
            for (std::size_t i = 0; i < count; ++i)
                Put(static_cast<CharT>(text[i]));
        }
    }

    /// What is in the buffer now.
    const CharT* Begin() const noexcept { return m_begin; }
    std::size_t Length() const noexcept { return static_cast<std::size_t>(m_at - m_begin); }

    /// True when something did not fit.
    bool IsCut() const noexcept { return m_cut; }

protected:
    /// Takes Length() characters away and says how many may follow, at most as many as the buffer holds. 0
    /// ends the text.
    virtual std::size_t Drain() { return 0; }

    /// Empties the buffer, of which `capacity` characters may be used from now on.
    void Restart(std::size_t capacity) noexcept
    {
        m_at = m_begin;
        m_end = m_begin + capacity;
    }

private:
    std::size_t Room() const noexcept { return static_cast<std::size_t>(m_end - m_at); }

    // The same while there are eight more on both sides. Writes whole eights: what comes next overwrites what
    // was too much.
    static void CopyPlainByEights(const char*& text, const char* textEnd, char*& at, const char* end) noexcept
    {
        constexpr std::uint64_t ONES = 0x0101010101010101u;
        constexpr std::uint64_t HIGH_BITS = 0x8080808080808080u;
        while (textEnd - text >= 8 && end - at >= 8) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, text, sizeof eight);
            std::memcpy(at, &eight, sizeof eight);
            const std::uint64_t differing = eight ^ (ONES * '%');
            const std::uint64_t percents = (differing - ONES) & ~differing & HIGH_BITS;
            const std::ptrdiff_t plain = std::countr_zero(percents) / 8; // 8 when there is none
            text += plain;
            at += plain;
            if (percents != 0) return;
        }
    }

    bool MakeRoom()
    {
        const std::size_t room = m_cut ? 0 : Drain();
        if (room == 0) {
            m_cut = true;
            m_end = m_at;
            return false;
        }
        Restart(room);
        return true;
    }

    CharT* m_begin;
    CharT* m_at;
    CharT* m_end;
    bool m_cut = false;
};

/// Goes by a small buffer into a string, up to a limit. Finish() puts the rest there.
template<typename CharT>
class FormatStringOutT final : public FormatOutT<CharT>
{
public:
    FormatStringOutT(std::basic_string<CharT>& out, std::size_t limit) noexcept
        : FormatOutT<CharT>(m_buffer, std::min(limit, BUFFER_CHARS)), m_out(out), m_left(limit)
    {}

    void Finish() { Take(); }

private:
    static constexpr std::size_t BUFFER_CHARS = 512;

    std::size_t Take()
    {
        const std::size_t length = this->Length();
        m_out.append(this->Begin(), length);
        m_left -= length;
        return std::min(m_left, BUFFER_CHARS);
    }

    std::size_t Drain() override
    {
        if (m_left == this->Length())
            return 0; // the limit is reached; what is in the buffer stays for Finish()
        return Take();
    }

    std::basic_string<CharT>& m_out;
    std::size_t m_left;
    CharT m_buffer[BUFFER_CHARS];
};

} // namespace BSS::UTI
