// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The hooks of the C runtimes, as the runtimes themselves know them: found by name in the loaded DLLs, past
// what MinGW-w64 links in under the same name.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>
#include <windows.h>

using namespace BSS::HAL;

namespace {

using HandlerT = _invalid_parameter_handler;
using SetHandlerT = HandlerT(__cdecl*)(HandlerT);

std::atomic<int> s_calls = 0;

void Count()
{
    ++s_calls;
}

void Theirs(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {}

template<typename FunctionT>
FunctionT Find(HMODULE library, const char* name)
{
    return std::bit_cast<FunctionT>(GetProcAddress(library, name));
}

/// The runtimes that have a hook, emptied and afterwards as they were before.
class RuntimeHook : public testing::Test
{
protected:
    void SetUp() override
    {
        s_calls = 0;
        for (const HMODULE library : {GetModuleHandleW(L"msvcrt.dll"), m_universal}) {
            const auto set =
                library == nullptr ? nullptr : Find<SetHandlerT>(library, "_set_invalid_parameter_handler");
            if (set != nullptr) m_hooks.push_back({set, set(nullptr)});
        }
        if (m_hooks.empty()) GTEST_SKIP() << "no runtime here has the hook";
    }
    void TearDown() override
    {
        RestoreInvalidParameterHandler();
        for (const Hook& hook : m_hooks)
            hook.set(hook.before);
        if (m_universal != nullptr) FreeLibrary(m_universal);
    }

    std::vector<HandlerT> Current() const
    {
        std::vector<HandlerT> current;
        for (const Hook& hook : m_hooks) {
            current.push_back(hook.set(nullptr));
            hook.set(current.back());
        }
        return current;
    }
    void TakeByTheirs() const
    {
        for (const Hook& hook : m_hooks)
            hook.set(&Theirs);
    }
    std::vector<HandlerT> AllTheirs() const { return std::vector<HandlerT>(m_hooks.size(), &Theirs); }

    struct Hook
    {
        SetHandlerT set;
        HandlerT before;
    };
    const HMODULE m_universal = LoadLibraryW(L"ucrtbase.dll");
    std::vector<Hook> m_hooks;
};

TEST_F(RuntimeHook, WhatEachRuntimeHoldsCallsTheCallback)
{
    InstallInvalidParameterHandler(&Count);
    int calls = 0;
    for (const HandlerT handler : Current()) {
        ASSERT_NE(handler, nullptr);
        handler(L"expression", L"function", L"file", 1, 0);
        EXPECT_EQ(s_calls, ++calls);
    }
}

TEST_F(RuntimeHook, TheRuntimeItselfCallsTheCallback)
{
    using NumberToTextT = int(__cdecl*)(int, char*, std::size_t, int);
    const auto numberToText = m_universal == nullptr ? nullptr : Find<NumberToTextT>(m_universal, "_itoa_s");
    if (numberToText == nullptr) GTEST_SKIP() << "no ucrtbase.dll here";
    InstallInvalidParameterHandler(&Count);
    EXPECT_EQ(numberToText(1, nullptr, 10, 10), EINVAL);
    EXPECT_EQ(s_calls, 1);
}

TEST_F(RuntimeHook, RestoringGivesTheHookBackToWhoHadIt)
{
    TakeByTheirs();
    InstallInvalidParameterHandler(&Count);
    InstallInvalidParameterHandler(&Count);
    for (const HandlerT handler : Current())
        EXPECT_NE(handler, &Theirs);
    RestoreInvalidParameterHandler();
    EXPECT_EQ(Current(), AllTheirs());
}

TEST_F(RuntimeHook, WhoTookTheHookAfterwardsKeepsIt)
{
    InstallInvalidParameterHandler(&Count);
    TakeByTheirs();
    RestoreInvalidParameterHandler();
    EXPECT_EQ(Current(), AllTheirs());
}

TEST(InvalidParameterCallback, IsKeptAndCalledWhetherOrNotARuntimeHasAHook)
{
    s_calls = 0;
    InstallInvalidParameterHandler(&Count);
    InvokeInvalidParameterHandler();
    EXPECT_EQ(s_calls, 1);
    RestoreInvalidParameterHandler();
    InvokeInvalidParameterHandler();
    EXPECT_EQ(s_calls, 1);
}

} // namespace
