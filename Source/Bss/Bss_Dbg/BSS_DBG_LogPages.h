// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How lines are laid out in a file whose writes the system may stop half-way when it kills the process, but
// only where a page of the file ends: so that lines end there too, and whatever has been written by then is
// whole lines. Where a line would go on in the next page it begins there instead, and the line before it is
// filled up with spaces:
//
//     | first line.....\n second line.....\n third line..      \n|fourth line.....\n fifth
//     page                                                        page
//
// Pure: knows no file. Takes no memory.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_AppendFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace BSS::DBG {

class LogPagesC
{
public:
    /// The last of the lines is filled up too if a usual one has no room behind it in its page: one of so
    /// many bytes, or as long as the longest of those at the ends of pages.
    static constexpr std::size_t USUAL_LINE_BYTES = 256;

    /// The largest page; a larger one consists of these. All are powers of two.
    static constexpr std::size_t MAX_PAGE_BYTES = 4096;

    static constexpr std::size_t MAX_PIECES = HAL::AppendFileC::MOST_PIECES;

    /// Whole lines that are to stand from `offsetBytes` on and to take `mostBytes` at most; lines that have
    /// no room are left out. A page of 0 bytes: writes are not stopped, nothing is filled up. A line that is
    /// longer than a page, and one that is the first and longer than what is left of its page, go on in the
    /// next. The last line need not have its end. Keeps the view.
    LogPagesC(std::string_view lines, std::uint64_t offsetBytes, std::size_t pageBytes,
              std::uint64_t mostBytes) noexcept;
    LogPagesC(const LogPagesC&) = delete;
    LogPagesC& operator=(const LogPagesC&) = delete;

    /// Whether that much text is sure to stand there as it is.
    static bool CanStandAsItIs(std::size_t textBytes, std::uint64_t offsetBytes,
                               std::size_t pageBytes) noexcept
    {
        if (pageBytes == 0) return true;
        return textBytes + std::max(textBytes, USUAL_LINE_BYTES) <=
               pageBytes - (offsetBytes & (pageBytes - 1));
    }

    /// What is to be written, piece by piece.
    std::span<const HAL::AppendPieceT> pieces() const noexcept { return {m_pieces.data(), m_nPieces}; }

    /// How much of the lines that is.
    std::size_t textBytes() const noexcept { return m_textBytes; }

    /// How much it is in the file.
    std::size_t fileBytes() const noexcept { return m_fileBytes; }

    struct ExtentT
    {
        std::size_t textBytes = 0;
        std::size_t fileBytes = 0;
    };

    /// The whole lines among the first `fileBytes` bytes of the pieces.
    ExtentT wholeLinesWithin(std::size_t fileBytes) const noexcept;

private:
    bool take(std::size_t textBytes, std::uint64_t mostBytes) noexcept;
    void fill(std::size_t bytes) noexcept;
    std::size_t leftOfPage() const noexcept;

    const std::string_view m_lines;
    const std::uint64_t m_offsetBytes;
    const std::size_t m_pageBytes;
    std::size_t m_textBytes = 0;
    std::size_t m_fileBytes = 0;
    std::size_t m_nPieces = 0;
    std::array<HAL::AppendPieceT, MAX_PIECES> m_pieces; // the first m_nPieces of them
};

} // namespace BSS::DBG
