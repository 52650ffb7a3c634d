// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
#include "Bss/Bss_Dbg/BSS_DBG_LogPages.h"

#include <algorithm>

namespace BSS::DBG {

namespace {

// The spaces that a line may need, its end, and a byte more, so that no text can stand right behind it.
struct FillingT
{
    std::array<char, LogPagesC::MAX_PAGE_BYTES + 2> bytes;
    constexpr FillingT() : bytes()
    {
        bytes.fill(' ');
        bytes[LogPagesC::MAX_PAGE_BYTES] = '\n';
    }
    constexpr const char* End() const noexcept { return bytes.data() + LogPagesC::MAX_PAGE_BYTES + 1; }
};
constexpr FillingT FILLING;

// Has the system load the pages of memory that the piece lies in: it would stop the write there to do so, and
// look for a signal that kills.
void Touch(const HAL::AppendPieceT& piece) noexcept
{
    static_cast<void>(*static_cast<const volatile char*>(piece.data));
    static_cast<void>(*static_cast<const volatile char*>(piece.data + piece.count - 1));
}

// Behind the last line end, 0 if there is none.
std::size_t EndOfLastLine(std::string_view text) noexcept
{
    return text.rfind('\n') + 1; // npos + 1 is 0
}

// Behind the first line end at or behind that place; where there is none, the end.
std::size_t EndOfLine(std::string_view text, std::size_t from) noexcept
{
    const std::size_t end = text.find('\n', from);
    return end == std::string_view::npos ? text.size() : end + 1;
}

} // namespace

LogPagesC::LogPagesC(std::string_view lines, std::uint64_t offsetBytes, std::size_t pageBytes,
                     std::uint64_t mostBytes) noexcept
    : m_lines(lines), m_offsetBytes(offsetBytes), m_pageBytes(std::min(pageBytes, MAX_PAGE_BYTES))
{
    if (m_pageBytes == 0) {
        static_cast<void>(take(lines.size(), mostBytes));
        return;
    }
    std::size_t longest = USUAL_LINE_BYTES; // of those at the ends of pages, unless it is longer than a page
    const auto note = [&](std::size_t lineBytes) {
        if (lineBytes <= m_pageBytes) longest = std::max(longest, lineBytes);
    };
    // A turn for each page begins where a line begins, or goes on that is longer than a page. It adds two
    // pieces at most.
    while (m_textBytes < lines.size() && m_nPieces + 2 <= MAX_PIECES) {
        const std::string_view rest = lines.substr(m_textBytes);
        const std::size_t left = leftOfPage();
        if (rest.size() <= left) {
            static_cast<void>(take(rest.size(), mostBytes));
            break;
        }
        const std::size_t here = EndOfLastLine(rest.substr(0, left));
        if (!take(here, mostBytes)) break;
        if (here == left) continue;
        const std::size_t next = EndOfLine(rest, left) - here; // the length of the line that has no room
        note(next);
        const std::size_t filling = left - here;
        if (m_textBytes == 0 || next > m_pageBytes) {
            if (!take(next, mostBytes)) break;
        } else if (mostBytes < m_fileBytes + filling || mostBytes - m_fileBytes - filling < next) {
            break;
        } else {
            fill(filling);
        }
    }
    const std::string_view taken = lines.substr(0, m_textBytes);
    if (taken.empty() || taken.back() != '\n' || m_nPieces == MAX_PIECES) return;
    note(taken.size() - EndOfLastLine(taken.substr(0, taken.size() - 1)));
    const std::size_t left = leftOfPage();
    if (left < std::min(longest, m_pageBytes) && mostBytes >= m_fileBytes + left) fill(left);
}

std::size_t LogPagesC::leftOfPage() const noexcept
{
    return m_pageBytes - static_cast<std::size_t>((m_offsetBytes + m_fileBytes) & (m_pageBytes - 1));
}

// Whole lines of that much text; false if there is room for a part of it only, which is taken.
bool LogPagesC::take(std::size_t textBytes, std::uint64_t mostBytes) noexcept
{
    const std::uint64_t room = mostBytes > m_fileBytes ? mostBytes - m_fileBytes : 0;
    const std::string_view text = m_lines.substr(m_textBytes, textBytes);
    const std::size_t taken = text.size() <= room ? text.size() : EndOfLastLine(text.substr(0, room));
    if (taken > 0) {
        HAL::AppendPieceT* const last = m_nPieces > 0 ? &m_pieces[m_nPieces - 1] : nullptr;
        if (last != nullptr && last->data + last->count == text.data()) {
            last->count += taken;
        } else {
            m_pieces[m_nPieces++] = {text.data(), taken};
        }
        m_textBytes += taken;
        m_fileBytes += taken;
    }
    return taken == textBytes;
}

// Puts that many spaces before the line end that was taken last.
void LogPagesC::fill(std::size_t bytes) noexcept
{
    --m_pieces[m_nPieces - 1].count;
    const HAL::AppendPieceT filling{FILLING.End() - bytes - 1, bytes + 1};
    Touch(filling);
    m_pieces[m_nPieces++] = filling;
    m_fileBytes += bytes;
}

LogPagesC::ExtentT LogPagesC::wholeLinesWithin(std::size_t fileBytes) const noexcept
{
    ExtentT whole;
    ExtentT before; // the pieces before this one
    for (const HAL::AppendPieceT& piece : pieces()) {
        const std::size_t count = std::min(piece.count, fileBytes - before.fileBytes);
        const bool filling = piece.data + piece.count == FILLING.End();
        const std::size_t end = EndOfLastLine(std::string_view(piece.data, count));
        if (end > 0) whole = {before.textBytes + (filling ? 1 : end), before.fileBytes + end};
        before.textBytes += filling ? 1 : count;
        before.fileBytes += count;
        if (count < piece.count) break;
    }
    // What has no line end at all counts as whole where all of it is there.
    return fileBytes >= m_fileBytes ? ExtentT{m_textBytes, m_fileBytes} : whole;
}

} // namespace BSS::DBG
