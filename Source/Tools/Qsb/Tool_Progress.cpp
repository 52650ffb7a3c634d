// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// When the line is drawn, and what it looks like.
#include "Tools/Qsb/Tool_Progress.h"

#include "Bss/Bss_Hal/BSS_HAL_Console.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

namespace {

constexpr std::chrono::milliseconds s_oDelay{1000};
constexpr std::chrono::milliseconds s_oInterval{100};
constexpr std::size_t s_nBarColumns = 30;

std::string Line(const std::string& label, std::uint64_t ullDone, std::uint64_t ullTotal)
{
    if (ullTotal == 0) return fmt::format("{}: {}", label, ullDone);
    const double dPart = std::min(1.0, static_cast<double>(ullDone) / static_cast<double>(ullTotal));
    const auto nFull = static_cast<std::size_t>(dPart * static_cast<double>(s_nBarColumns));
    return fmt::format("{} [{:#<{}}{: <{}}] {:3.0f} %", label, "", nFull, "", s_nBarColumns - nFull,
                       dPart * 100.0);
}

} // namespace

ProgressC::ProgressC(const std::string& label, std::uint64_t ullTotal, bool bQuiet)
    : ProgressC(label, ullTotal, !bQuiet && BSS::HAL::StderrIsTerminal() ? stderr : nullptr,
                std::chrono::steady_clock::now)
{}

ProgressC::ProgressC(const std::string& label, std::uint64_t ullTotal, std::FILE* stream, ClockT clock)
    : m_strLabel(label), m_ullTotal(ullTotal), m_pStream(stream), m_oClock(std::move(clock)),
      m_oNextDraw(m_oClock() + s_oDelay)
{}

ProgressC::~ProgressC()
{
    // A carriage return and the terminal's code for erasing to the end of the line.
    if (m_bDrawn) std::fputs("\r\x1b[K", m_pStream);
}

void ProgressC::Advance(std::uint64_t ullWork)
{
    m_ullDone += ullWork;
    if (m_pStream == nullptr || m_oClock() < m_oNextDraw) return;
    m_oNextDraw = m_oClock() + s_oInterval;
    Draw();
}

void ProgressC::Draw()
{
    fmt::print(m_pStream, "\r{}\x1b[K", Line(m_strLabel, m_ullDone, m_ullTotal));
    std::fflush(m_pStream);
    m_bDrawn = true;
}

} // namespace Tool
