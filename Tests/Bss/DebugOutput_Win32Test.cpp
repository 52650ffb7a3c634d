// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Debugger output as a debugger gets it: the system raises an exception that carries the text, as wide text
// where it is new enough, else in the active code page.
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

using namespace BSS::HAL;

namespace {

constexpr DWORD PRINT_NARROW = 0x40010006;
constexpr DWORD PRINT_WIDE = 0x4001000A;

/// Takes the texts in the debugger's place for as long as it lives. One at a time, and only this thread's.
class DebuggerEar
{
public:
    DebuggerEar() : m_handler(AddVectoredExceptionHandler(1, &Hear))
    {
        s_thread = GetCurrentThreadId();
        s_heard.clear();
    }
    ~DebuggerEar() { RemoveVectoredExceptionHandler(m_handler); }
    DebuggerEar(const DebuggerEar&) = delete;
    DebuggerEar& operator=(const DebuggerEar&) = delete;

    std::wstring Heard() const { return s_heard; }

private:
    static std::wstring TextOf(const EXCEPTION_RECORD& print)
    {
        const auto size = static_cast<std::size_t>(print.ExceptionInformation[0]) - 1; // with its zero
        const auto address = print.ExceptionInformation[1];
        if (print.ExceptionCode == PRINT_WIDE) return {reinterpret_cast<const wchar_t*>(address), size};
        wchar_t wide[64] = {};
        MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(address), static_cast<int>(size), wide,
                            63);
        return wide;
    }

    static LONG CALLBACK Hear(EXCEPTION_POINTERS* exception)
    {
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        const bool print = record.ExceptionCode == PRINT_WIDE || record.ExceptionCode == PRINT_NARROW;
        if (!print || GetCurrentThreadId() != s_thread) return EXCEPTION_CONTINUE_SEARCH;
        s_heard += TextOf(record);
        return EXCEPTION_CONTINUE_EXECUTION; // taken, as by a debugger
    }

    static inline DWORD s_thread = 0;
    static inline std::wstring s_heard;
    void* const m_handler;
};

TEST(DebugOutputWindows, ADebuggerGetsTheText)
{
    const DebuggerEar ear;
    DebugOutput(L"first\n");
    EXPECT_EQ(ear.Heard(), L"first\n");
    DebugOutput(L"caf\u00E9");
    EXPECT_EQ(ear.Heard(), L"first\ncaf\u00E9");
}

TEST(DebugOutputWindows, WhatASinkTakesNoDebuggerGets)
{
    const DebuggerEar ear;
    SetDebugOutputSink([](const wchar_t*, void*) {}, nullptr);
    DebugOutput(L"unheard");
    SetDebugOutputSink(nullptr, nullptr);
    EXPECT_EQ(ear.Heard(), L"");
}

} // namespace
