// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The hook of the C runtime. That the runtime calls it is its own business; what stands in it is ours.
#include "Bss/Bss_Hal/BSS_HAL_InvalidParameter.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace BSS::HAL;

namespace {

int s_calls = 0;

void Count()
{
    ++s_calls;
}

void Theirs(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {}

class RuntimeHook : public testing::Test
{
protected:
    RuntimeHook() : m_before(_set_invalid_parameter_handler(nullptr)) { s_calls = 0; }
    ~RuntimeHook() override
    {
        RestoreInvalidParameterHandler();
        _set_invalid_parameter_handler(m_before);
    }

    static _invalid_parameter_handler Current()
    {
        const _invalid_parameter_handler current = _set_invalid_parameter_handler(nullptr);
        _set_invalid_parameter_handler(current);
        return current;
    }

    const _invalid_parameter_handler m_before;
};

TEST_F(RuntimeHook, WhatTheRuntimeHoldsCallsTheCallback)
{
    InstallInvalidParameterHandler(&Count);
    ASSERT_NE(Current(), nullptr);
    Current()(L"expression", L"function", L"file", 1, 0);
    EXPECT_EQ(s_calls, 1);
}

TEST_F(RuntimeHook, RestoringGivesTheHookBackToWhoHadIt)
{
    _set_invalid_parameter_handler(&Theirs);
    InstallInvalidParameterHandler(&Count);
    InstallInvalidParameterHandler(&Count);
    EXPECT_NE(Current(), &Theirs);
    RestoreInvalidParameterHandler();
    EXPECT_EQ(Current(), &Theirs);
}

TEST_F(RuntimeHook, WhoTookTheHookAfterwardsKeepsIt)
{
    InstallInvalidParameterHandler(&Count);
    _set_invalid_parameter_handler(&Theirs);
    RestoreInvalidParameterHandler();
    EXPECT_EQ(Current(), &Theirs);
}

} // namespace
