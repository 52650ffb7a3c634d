// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The buffer takes the place of the C library's own.
#include "Tools/Qsb/Tool_OutputStream.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_OutputFile.h"

#include <fmt/format.h>

namespace Tool {

namespace {

constexpr std::size_t s_nLargeBuffer = std::size_t{1} << 20;
constexpr std::uint64_t s_ullWriteback = std::uint64_t{8} << 20;

} // namespace

OutputStreamC::OutputStreamC(const OutputFileC& file)
    : m_strTarget(file.GetTarget()),
      m_pStream(BSS::HAL::OpenStream(BSS::HAL::WidePath(file.GetTemporaryPath()), "wb"), &std::fclose)
{
    if (!m_pStream) {
        throw ToolErrorC(s_iFailed,
                         fmt::format("{}: cannot be written; may you write to its folder?", m_strTarget));
    }
    std::setbuf(m_pStream.get(), nullptr);
}

// A piece ends at a multiple of its size in the file: the system keeps a file in large aligned pieces itself,
// and cannot when a write ends a few bytes behind the beginning of one.
void OutputStreamC::Written()
{
    if (m_strBuffer.size() < s_nLargeBuffer) return;
    const std::uint64_t ullBehind = (m_ullWritten + m_strBuffer.size()) % s_nLargeBuffer;
    Write(m_strBuffer.size() - static_cast<std::size_t>(ullBehind));
}

void OutputStreamC::Write(std::size_t nBytes)
{
    if (std::fwrite(m_strBuffer.data(), 1, nBytes, m_pStream.get()) != nBytes) Fail();
    m_strBuffer.erase(0, nBytes);
    m_ullWritten += nBytes;
    if (m_ullWritten - m_ullStarted < s_ullWriteback) return;
    BSS::HAL::StartWriteback(m_pStream.get(), m_ullStarted, m_ullWritten - m_ullStarted);
    m_ullStarted = m_ullWritten;
}

void OutputStreamC::Close()
{
    Write(m_strBuffer.size());
    if (std::fclose(m_pStream.release()) != 0) Fail();
}

void OutputStreamC::Fail() const
{
    throw ToolErrorC(s_iFailed, fmt::format("{}: writing failed; is there room left?", m_strTarget));
}

} // namespace Tool
