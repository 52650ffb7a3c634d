// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The dump is written by the thread that has crashed; only one whose stack is used up has
// another one do it. abort() is told by the C runtime that this code is linked with; another runtime's is
// not.
//
// On a machine without dbghelp.dll, or one that is too old, nothing is installed.
#include "Bss/Bss_Hal/BSS_HAL_CrashDump.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <dbghelp.h>

namespace BSS::HAL {

namespace {

constexpr std::size_t MAX_PATH_UNITS = 4000;
constexpr std::size_t MAX_STAMP_UNITS = 64;
constexpr DWORD DUMP_WAIT_MS = 10000;
constexpr DWORD ABORTED = 0x40000015; // what the system calls a program that ends itself by an error
constexpr ULONG RESERVED_STACK_BYTES = 64 << 10;

using WriteT = decltype(&MiniDumpWriteDump);
using AbortHandlerT = void(__cdecl*)(int);

// The handler finds everything here and allocates nothing.
constinit FixedTextT<wchar_t, MAX_PATH_UNITS + MAX_STAMP_UNITS> s_path;
constinit WriteT s_pWrite = nullptr;
constinit LPTOP_LEVEL_EXCEPTION_FILTER s_pBefore = nullptr;
constinit AbortHandlerT s_pAbortBefore = nullptr;
constinit std::atomic<bool> s_bInstalled = false;
constinit std::atomic<bool> s_bBegun = false;
constinit std::atomic<bool> s_bDone = false;

struct CrashT
{
    DWORD thread;
    EXCEPTION_POINTERS* pException;
};

constexpr std::size_t LONGEST_STAMP = 40; // "-20260131T235959Z-4294967295.dmp", and some

std::int64_t UnixSeconds() noexcept
{
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    const auto steps = (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    return static_cast<std::int64_t>(steps / 10000000) - 11644473600;
}

DWORD WINAPI WriteDump(void* argument) noexcept
{
    const auto& crash = *static_cast<const CrashT*>(argument);
    AddCrashStamp(s_path, UnixSeconds(), GetCurrentProcessId());
    s_path.add(CrashDumpSuffix());
    const HANDLE file =
        CreateFileW(s_path.getText(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    MINIDUMP_EXCEPTION_INFORMATION information = {crash.thread, crash.pException, FALSE};
    const auto kind =
        static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpWithThreadInfo | MiniDumpWithUnloadedModules);
    s_pWrite(GetCurrentProcess(), GetCurrentProcessId(), file, kind, &information, nullptr, nullptr);
    FlushFileBuffers(file);
    CloseHandle(file);
    return 0;
}

void WriteDumpElsewhere(CrashT& crash) noexcept
{
    const HANDLE thread = CreateThread(nullptr, 0, &WriteDump, &crash, 0, nullptr);
    if (thread == nullptr) return;
    WaitForSingleObject(thread, DUMP_WAIT_MS);
    CloseHandle(thread);
}

void WriteDumpOnce(EXCEPTION_POINTERS* pException) noexcept
{
    if (!s_bInstalled) return; // somebody still calls the handler after it was removed
    if (s_bBegun.exchange(true)) {
        for (DWORD waited = 0; waited < DUMP_WAIT_MS && !s_bDone.load(); waited += 10)
            Sleep(10);
        return;
    }
    CrashT crash = {GetCurrentThreadId(), pException};
    if (pException->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW)
        WriteDumpElsewhere(crash);
    else
        WriteDump(&crash);
    s_bDone = true;
}

LONG WINAPI OnException(EXCEPTION_POINTERS* pException)
{
    WriteDumpOnce(pException);
    return s_pBefore != nullptr ? s_pBefore(pException) : EXCEPTION_CONTINUE_SEARCH;
}

// The runtime ends the process when this returns.
void __cdecl OnAbort(int number)
{
    CONTEXT context = {};
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = ABORTED;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    EXCEPTION_POINTERS pointers = {&record, &context};
    WriteDumpOnce(&pointers);
    if (s_pAbortBefore != SIG_DFL && s_pAbortBefore != SIG_IGN && s_pAbortBefore != SIG_ERR)
        s_pAbortBefore(number);
}

// By its full name: nothing that lies in the program's own folder is meant. Stays loaded.
WriteT FindWriter() noexcept
{
    FixedTextT<wchar_t, MAX_PATH + 16> path;
    wchar_t folder[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return nullptr;
    path.add(folder).add(LR"(\dbghelp.dll)");
    const HMODULE library = LoadLibraryW(path.getText());
    if (library == nullptr) return nullptr;
    const FARPROC found = GetProcAddress(library, "MiniDumpWriteDump");
    WriteT writer = nullptr;
    static_assert(sizeof(found) == sizeof(writer));
    std::memcpy(&writer, &found, sizeof(writer));
    return writer;
}

bool Prepare(const std::wstring& directory, const std::wstring& program)
{
    const std::wstring path = LongPath(JoinPath(directory, program), LONGEST_STAMP);
    if (path.size() > MAX_PATH_UNITS) return false;
    s_path.clear();
    s_path.add(path.c_str());
    if (s_pWrite == nullptr) s_pWrite = FindWriter();
    return s_pWrite != nullptr;
}

} // namespace

bool InstallCrashDump(const std::wstring& directory, const std::wstring& program)
{
    if (s_bInstalled || !Prepare(directory, program)) return false;
    ULONG reserved = RESERVED_STACK_BYTES; // for the handler, when this thread's stack is used up
    SetThreadStackGuarantee(&reserved);
    s_pBefore = SetUnhandledExceptionFilter(&OnException);
    s_pAbortBefore = std::signal(SIGABRT, &OnAbort);
    s_bInstalled = true;
    return true;
}

void RemoveCrashDump() noexcept
{
    if (!s_bInstalled) return;
    const LPTOP_LEVEL_EXCEPTION_FILTER current = SetUnhandledExceptionFilter(s_pBefore);
    if (current != &OnException) SetUnhandledExceptionFilter(current);
    const AbortHandlerT aborting = std::signal(SIGABRT, s_pAbortBefore == SIG_ERR ? SIG_DFL : s_pAbortBefore);
    if (aborting != &OnAbort && aborting != SIG_ERR) std::signal(SIGABRT, aborting);
    s_bInstalled = false;
}

const wchar_t* CrashDumpSuffix() noexcept
{
    return L".dmp";
}

} // namespace BSS::HAL
