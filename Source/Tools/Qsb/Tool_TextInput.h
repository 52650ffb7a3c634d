// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Buffered reading of an input of which some is text: lines, words between white space, and bytes, with the
// line number for messages. Lines end with LF or CRLF. Lengths are bounded, whatever the input holds. One
// thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

struct NamedInputC;

class TextInputC
{
public:
    /// Where reading goes on.
    struct PlaceT
    {
        std::uint64_t ullOffset = 0;
        std::uint64_t ullLine = 1;
    };

    /// Reads `input` from its start; it must outlive this.
    explicit TextInputC(const NamedInputC& input);

    PlaceT GetPlace() const noexcept { return {m_ullBufferOffset + m_nPosition, m_ullLine}; }
    void GoTo(const PlaceT& place);

    /// Bytes from the place to the end of the input.
    std::uint64_t GetBytesLeft() const noexcept;

    /// The next line without its end. False at the end of the input. ToolErrorC with s_iDamaged when it is
    /// longer than s_nLongestLine.
    bool ReadLine(std::string& line);

    /// The next word, valid until the next call of any operation; empty at the end of the input. ToolErrorC
    /// with s_iDamaged when it is longer than s_nLongestWord.
    std::string_view ReadWord();

    /// The same, but does not pass the end of the line: empty there.
    std::string_view ReadWordInLine();

    /// Copies the next bytes. ToolErrorC with s_iDamaged when the input ends before.
    void ReadBytes(char* pDestination, std::size_t nBytes);

    /// Passes over bytes. ToolErrorC with s_iDamaged when the input ends before.
    void SkipBytes(std::uint64_t ullBytes);

    /// Throws ToolErrorC with s_iDamaged: the input's name, the line, the reason.
    [[noreturn]] void FailAtLine(const std::string& reason) const { FailAtLine(m_ullLine, reason); }
    [[noreturn]] void FailAtLine(std::uint64_t ullLine, const std::string& reason) const;

    /// The same with the byte.
    [[noreturn]] void FailAtByte(const std::string& reason) const;

    static constexpr std::size_t s_nLongestLine = 16384;
    static constexpr std::size_t s_nLongestWord = 1000;

private:
    bool Refill();
    void SkipSpace(bool bLineEnds);
    std::string_view TakeWord();

    const NamedInputC& m_rInput;
    std::vector<char> m_vecBuffer;
    std::size_t m_nPosition = 0;         ///< next byte in the buffer
    std::size_t m_nEnd = 0;              ///< end of what the buffer holds
    std::uint64_t m_ullBufferOffset = 0; ///< offset of the buffer's first byte
    std::uint64_t m_ullLine = 1;
};

} // namespace Tool
