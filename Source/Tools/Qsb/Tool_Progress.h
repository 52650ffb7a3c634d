// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The progress bar of long work: one line on stderr, drawn when the work has taken a second and then ten
// times a second, erased at the end. Nothing is drawn when stderr is no terminal or the user wants quiet. One
// thread at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

namespace Tool {

class ProgressC
{
public:
    using ClockT = std::function<std::chrono::steady_clock::time_point()>;

    /// `label` says what is done; `ullTotal` is the amount of work, in any unit, 0 when it is not known.
    ProgressC(const std::string& label, std::uint64_t ullTotal, bool bQuiet);

    /// Draws on `stream` by `clock`, whatever the stream is.
    ProgressC(const std::string& label, std::uint64_t ullTotal, std::FILE* stream, ClockT clock);

    ProgressC(const ProgressC&) = delete;
    ProgressC& operator=(const ProgressC&) = delete;

    /// Erases the line.
    ~ProgressC();

    /// Reports that `ullWork` more has been done.
    void Advance(std::uint64_t ullWork);

private:
    void Draw();

    std::string m_strLabel;
    std::uint64_t m_ullTotal;
    std::uint64_t m_ullDone = 0;
    std::FILE* m_pStream; ///< not owned; null: draws nothing
    ClockT m_oClock;
    std::chrono::steady_clock::time_point m_oNextDraw;
    bool m_bDrawn = false;
};

} // namespace Tool
