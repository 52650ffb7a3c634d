// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The buffer, and what is read from it.
#include "Tools/Qsb/Tool_TextInput.h"

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_PointSource.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Tool {

namespace {

constexpr std::size_t s_nBufferBytes = 65536;

bool IsSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

} // namespace

TextInputC::TextInputC(const NamedInputC& input) : m_rInput(input), m_vecBuffer(s_nBufferBytes) {}

void TextInputC::GoTo(const PlaceT& place)
{
    m_ullBufferOffset = place.ullOffset;
    m_ullLine = place.ullLine;
    m_nPosition = m_nEnd = 0;
}

std::uint64_t TextInputC::GetBytesLeft() const noexcept
{
    const std::uint64_t ullOffset = GetPlace().ullOffset;
    return m_rInput.poInput->GetSize() - std::min(ullOffset, m_rInput.poInput->GetSize());
}

/// Keeps what has not been read and reads more behind it. False when there is no more, or no room.
bool TextInputC::Refill()
{
    std::memmove(m_vecBuffer.data(), m_vecBuffer.data() + m_nPosition, m_nEnd - m_nPosition);
    m_ullBufferOffset += m_nPosition;
    m_nEnd -= m_nPosition;
    m_nPosition = 0;
    const std::size_t nRead = m_rInput.poInput->ReadAt(
        m_ullBufferOffset + m_nEnd, m_vecBuffer.data() + m_nEnd, m_vecBuffer.size() - m_nEnd);
    m_nEnd += nRead;
    return nRead != 0;
}

bool TextInputC::ReadLine(std::string& line)
{
    line.clear();
    bool bAny = false;
    while (m_nPosition < m_nEnd || Refill()) {
        bAny = true;
        const char* pBegin = m_vecBuffer.data() + m_nPosition;
        const char* pEnd = m_vecBuffer.data() + m_nEnd;
        const char* pLineEnd = std::find(pBegin, pEnd, '\n');
        line.append(pBegin, pLineEnd);
        if (line.size() > s_nLongestLine) FailAtLine(fmt::format("longer than {} bytes", s_nLongestLine));
        m_nPosition += static_cast<std::size_t>(pLineEnd - pBegin);
        if (pLineEnd == pEnd) continue;
        ++m_nPosition;
        ++m_ullLine;
        break;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return bAny;
}

void TextInputC::SkipSpace(bool bLineEnds)
{
    while (m_nPosition < m_nEnd || Refill()) {
        const char c = m_vecBuffer[m_nPosition];
        if (!IsSpace(c) || (c == '\n' && !bLineEnds)) return;
        if (c == '\n') ++m_ullLine;
        ++m_nPosition;
    }
}

std::string_view TextInputC::ReadWord()
{
    SkipSpace(true);
    return TakeWord();
}

std::string_view TextInputC::ReadWordInLine()
{
    SkipSpace(false);
    return TakeWord();
}

std::string_view TextInputC::TakeWord()
{
    std::size_t nLength = 0;
    while (true) {
        const char* pWord = m_vecBuffer.data() + m_nPosition;
        while (m_nPosition + nLength < m_nEnd && !IsSpace(pWord[nLength]))
            ++nLength;
        if (nLength > s_nLongestWord) FailAtLine(fmt::format("a word longer than {} bytes", s_nLongestWord));
        if (m_nPosition + nLength < m_nEnd || !Refill()) break;
    }
    const std::string_view word(m_vecBuffer.data() + m_nPosition, nLength);
    m_nPosition += nLength;
    return word;
}

void TextInputC::ReadBytes(char* pDestination, std::size_t nBytes)
{
    while (nBytes != 0) {
        if (m_nPosition == m_nEnd && !Refill()) FailAtByte("the file ends here, in the middle of the data");
        const std::size_t nPart = std::min(nBytes, m_nEnd - m_nPosition);
        std::memcpy(pDestination, m_vecBuffer.data() + m_nPosition, nPart);
        m_nPosition += nPart;
        pDestination += nPart;
        nBytes -= nPart;
    }
}

void TextInputC::SkipBytes(std::uint64_t ullBytes)
{
    if (ullBytes > GetBytesLeft()) {
        FailAtByte(fmt::format("{} bytes of data are missing", ullBytes - GetBytesLeft()));
    }
    if (ullBytes <= m_nEnd - m_nPosition) {
        m_nPosition += static_cast<std::size_t>(ullBytes);
    } else {
        GoTo({GetPlace().ullOffset + ullBytes, m_ullLine});
    }
}

void TextInputC::FailAtLine(std::uint64_t ullLine, const std::string& reason) const
{
    throw ToolErrorC(s_iDamaged, fmt::format("{}: line {}: {}", m_rInput.strName, ullLine, reason));
}

void TextInputC::FailAtByte(const std::string& reason) const
{
    throw ToolErrorC(s_iDamaged,
                     fmt::format("{}: byte {}: {}", m_rInput.strName, GetPlace().ullOffset, reason));
}

} // namespace Tool
