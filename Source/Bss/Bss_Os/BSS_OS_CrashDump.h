// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A file about a crash, for programs that ask for it: what is in it and when it is written says
// BSS_HAL_CrashDump.h. One object at a time has the process's handler; it gives it back when it is destroyed.
// For one thread at a time; the dump itself is written on whichever thread crashes.
//
// A library that installs it must restore it before it is unloaded.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstddef>
#include <string>

namespace BSS::OS {

struct CrashDumpSettingsT
{
    /// What the names of its dumps begin with: 1 to 64 letters of ASCII, digits, '-', '_' or '.'.
    std::wstring program;

    /// Made when it is missing, for the user alone. Empty: where log files lie.
    std::wstring directory = {};

    /// So many dumps of this program stay, the newest; the others are removed when the handler is installed,
    /// so that there is room for one more. At least 1.
    std::size_t nKept = 5;
};

class CrashDumpC
{
public:
    CrashDumpC() = default;
    ~CrashDumpC();
    CrashDumpC(const CrashDumpC&) = delete;
    CrashDumpC& operator=(const CrashDumpC&) = delete;

    /// RC_INVALID_ARGUMENT for settings that cannot be; RC_FAILED when a handler is installed already, there
    /// is no directory, or the system has no means.
    [[nodiscard]] ResultCodeT install(const CrashDumpSettingsT& settings);

    /// The handlers from before are back. Nothing when this object has not installed any.
    void restore() noexcept;

private:
    bool m_bInstalled = false;
};

} // namespace BSS::OS
