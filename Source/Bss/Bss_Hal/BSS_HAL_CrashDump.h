// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A file that tells of a crash, written at the moment of the crash:
//   - Linux: a text, ".crash.txt", on SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT and SIGSYS: signal, address,
//     thread, registers, the calls that the stack shows, and the mappings of the process. Nothing but calls
//     that are safe in a signal handler is made.
//   - Windows: a minidump, ".dmp", on a structured exception that nobody handles and on abort(). The system's
//     dbghelp.dll is looked up when the handler is installed.
// Then whatever was installed before goes on: another handler, or the system's own end of the process. A
// process writes one dump; a thread that crashes while it is written waits for it, 10 s at most.
//
// One handler for a process. Install and remove are for one thread at a time.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_FixedText.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace BSS::HAL {

/// Dumps are called <directory>/<program>-<UTC as 20260131T235959Z>-<process id><suffix>. The directory must
/// be there; an absolute path stays right when the process changes its own directory. False when a handler is
/// installed already, the path is too long, or the system refuses.
bool InstallCrashDump(const std::wstring& directory, const std::wstring& program);

/// Puts the earlier handlers back, but for those that somebody has replaced meanwhile. Nothing when none is
/// installed.
void RemoveCrashDump() noexcept;

/// The last part of a dump's name, with its dot.
const wchar_t* CrashDumpSuffix() noexcept;

inline constexpr std::size_t CRASH_TIME_LENGTH = 16;

/// The middle of a dump's name: "-20260131T235959Z-4711". Names of one program in alphabetical order are in
/// the order of time.
template<typename CharT, std::size_t CAPACITY>
void AddCrashStamp(FixedTextT<CharT, CAPACITY>& text, std::int64_t unixSeconds,
                   std::uint32_t processId) noexcept
{
    using std::chrono::floor;
    const std::chrono::sys_seconds time{std::chrono::seconds(unixSeconds)};
    const auto day = floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    const auto number = [&text](auto value, std::size_t nDigits) {
        text.addNumber(static_cast<std::uint64_t>(value), nDigits);
    };
    text.add(CharT('-'));
    number(static_cast<int>(date.year()), 4);
    number(static_cast<unsigned>(date.month()), 2);
    number(static_cast<unsigned>(date.day()), 2);
    text.add(CharT('T'));
    number(clock.hours().count(), 2);
    number(clock.minutes().count(), 2);
    number(clock.seconds().count(), 2);
    text.add(CharT('Z')).add(CharT('-'));
    number(processId, 1);
}

} // namespace BSS::HAL
