// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// File, memory, window.
#include "Tools/Qsb/Tool_ScanInput.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace Tool {

namespace Hal = BSS::HAL;

namespace {

constexpr std::size_t s_nSmallWindow = 4096;
constexpr std::size_t s_nLargeWindow = 65536;

/// Bytes of `nBytes` at `ullOffset` that an input of `ullSize` bytes has.
std::size_t Present(std::uint64_t ullOffset, std::size_t nBytes, std::uint64_t ullSize)
{
    return static_cast<std::size_t>(std::min<std::uint64_t>(nBytes, ullSize - std::min(ullSize, ullOffset)));
}

} // namespace

FileInputC::FileInputC(const std::string& path)
    : m_strPath(path), m_pStream(Hal::OpenStream(Hal::WidePath(path), "rb"), &std::fclose)
{
    if (m_pStream == nullptr) {
        throw ToolErrorC(
            s_iFailed,
            fmt::format("{}: cannot be opened; is there a file of that name that you may read?", path));
    }
    if (!Hal::StreamSize(m_pStream.get(), m_ullSize)) {
        throw ToolErrorC(s_iFailed, fmt::format("{}: the system does not tell its size", path));
    }
    // Whoever reads comes with a buffer of his own.
    static_cast<void>(std::setvbuf(m_pStream.get(), nullptr, _IONBF, 0));
}

std::size_t FileInputC::ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes)
{
    const std::size_t nPresent = Present(ullOffset, nBytes, m_ullSize);
    if (nPresent == 0) return 0;
    std::FILE* const stream = m_pStream.get();
    const std::size_t nRead =
        Hal::SeekStream(stream, ullOffset) ? std::fread(pDestination, 1, nPresent, stream) : 0;
    // A file that has become shorter is answered with what it has.
    if (nRead < nPresent && std::feof(stream) == 0) {
        throw ToolErrorC(s_iFailed, fmt::format("{}: cannot be read at byte {}; check the disk", m_strPath,
                                                ullOffset + nRead));
    }
    return nRead;
}

bool FileInputC::NextStoredOffset(std::uint64_t ullFrom, std::uint64_t& ullNext)
{
    return Hal::NextStoredOffset(m_pStream.get(), ullFrom, ullNext);
}

std::size_t MemoryInputC::ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes)
{
    const std::size_t nPresent = Present(ullOffset, nBytes, m_nBytes);
    if (nPresent != 0) std::memcpy(pDestination, m_pBytes + ullOffset, nPresent);
    return nPresent;
}

InputWindowC::InputWindowC(ScanInputI& input)
    : m_rInput(input), m_pBytes(new char[s_nLargeWindow]), m_nWanted(s_nSmallWindow)
{}

std::size_t InputWindowC::ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes)
{
    std::size_t nDone = 0;
    while (nDone < nBytes) {
        const std::uint64_t ullNext = ullOffset + nDone;
        const bool bWithin = ullNext >= m_ullStart && ullNext - m_ullStart < m_nFill;
        if (!bWithin && !MoveTo(ullNext)) break;
        const auto nUsed = static_cast<std::size_t>(ullNext - m_ullStart);
        const std::size_t nPart = std::min(nBytes - nDone, m_nFill - nUsed);
        std::memcpy(static_cast<char*>(pDestination) + nDone, m_pBytes.get() + nUsed, nPart);
        nDone += nPart;
    }
    return nDone;
}

bool InputWindowC::MoveTo(std::uint64_t ullOffset)
{
    const std::uint64_t ullEnd = m_ullStart + m_nFill;
    const bool bGoesOn = ullOffset >= ullEnd && ullOffset - ullEnd < s_nSmallWindow;
    m_nWanted = bGoesOn ? std::min(2 * m_nWanted, s_nLargeWindow) : s_nSmallWindow;
    m_ullStart = ullOffset;
    m_nFill = m_rInput.ReadAt(ullOffset, m_pBytes.get(), m_nWanted);
    return m_nFill != 0;
}

} // namespace Tool
