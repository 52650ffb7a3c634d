// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The window moves forward by keeping what it already has of the bytes asked for.
#include "Sio/Sio_StreamWindow.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include <algorithm>
#include <cstring>

namespace SIO {

namespace {

constexpr std::size_t s_nSmallestFill = 4096;

} // namespace

void StreamWindowC::Attach(std::FILE* stream)
{
    m_pStream = stream;
    Forget();
    if (stream == nullptr) return;
    std::setvbuf(stream, nullptr, _IONBF, 0);
    if (m_pBuffer == nullptr) m_pBuffer.reset(new BytesT); // whose bytes stay as they are
}

void StreamWindowC::Forget() noexcept
{
    m_nFill = 0;
    m_nNextFill = s_nSmallestFill;
    m_ullStreamAt = s_ullNowhere;
    m_bFailed = false;
}

const char* StreamWindowC::View(std::uint64_t ullOffset, std::size_t nBytes, std::size_t& nShown)
{
    const char* const pBytes = ViewAll(ullOffset, nBytes, nShown);
    nShown = std::min(nShown, nBytes);
    return pBytes;
}

const char* StreamWindowC::ViewAll(std::uint64_t ullOffset, std::size_t nBytes, std::size_t& nShown)
{
    m_bFailed = false;
    const std::uint64_t ullEnd = m_ullBegin + m_nFill;
    if (m_nFill == 0 || ullOffset < m_ullBegin || ullOffset > ullEnd) {
        // A short step ahead is reading on, anything else a jump.
        const bool bNear = m_nFill != 0 && ullOffset > ullEnd && ullOffset - ullEnd < s_nLargest;
        if (!bNear) m_nNextFill = s_nSmallestFill;
        m_ullBegin = ullOffset;
        m_nFill = 0;
    }
    const std::size_t nSkipped = static_cast<std::size_t>(ullOffset - m_ullBegin);
    if (nBytes <= m_nFill - nSkipped) {
        nShown = m_nFill - nSkipped;
        return Bytes() + nSkipped;
    }
    m_nFill -= nSkipped;
    std::memmove(Bytes(), Bytes() + nSkipped, m_nFill);
    m_ullBegin = ullOffset;
    Fill(nBytes);
    nShown = m_nFill;
    return Bytes();
}

void StreamWindowC::Fill(std::size_t nWanted)
{
    if (!MoveTo(m_ullBegin + m_nFill)) {
        m_bFailed = true;
        return;
    }
    const std::size_t nTarget = std::min(std::max(m_nNextFill, nWanted), s_nLargest);
    const std::size_t nRead = std::fread(Bytes() + m_nFill, 1, nTarget - m_nFill, m_pStream);
    // Not every C library marks a stream that may not be read as failed; but none as at its end.
    m_bFailed = nRead < nTarget - m_nFill && std::feof(m_pStream) == 0;
    m_nFill += nRead;
    m_ullStreamAt += nRead;
    m_nNextFill = std::min(2 * nTarget, s_nLargest);
    // After an end or an error the stream's own idea of where it stands is not relied on.
    if (m_nFill < nTarget) {
        std::clearerr(m_pStream);
        m_ullStreamAt = s_ullNowhere;
    }
}

bool StreamWindowC::Read(std::uint64_t ullOffset, std::size_t nBytes, void* pDestination)
{
    if (!MoveTo(ullOffset)) return false;
    if (std::fread(pDestination, 1, nBytes, m_pStream) != nBytes) {
        std::clearerr(m_pStream);
        m_ullStreamAt = s_ullNowhere;
        return false;
    }
    m_ullStreamAt += nBytes;
    return true;
}

bool StreamWindowC::MoveTo(std::uint64_t ullOffset)
{
    if (m_ullStreamAt == ullOffset) return true;
    m_ullStreamAt = s_ullNowhere;
    if (!BSS::HAL::SeekStream(m_pStream, ullOffset)) return false;
    m_ullStreamAt = ullOffset;
    return true;
}

} // namespace SIO
