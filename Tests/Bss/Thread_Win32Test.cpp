// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Priorities and events against the system's own calls.
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_WakeEvent.h"

#include <gtest/gtest.h>
#include <thread>
#include <windows.h>

using namespace BSS::HAL;

namespace {

TEST(WindowsThread, ThePriorityIsTheSystemsOwn)
{
    std::thread([] {
        for (const int priority : {THREAD_PRIORITY_NORMAL, THREAD_PRIORITY_ABOVE_NORMAL, THREAD_PRIORITY_LOWEST,
                                   THREAD_PRIORITY_IDLE, THREAD_PRIORITY_TIME_CRITICAL}) {
            ASSERT_TRUE(SetThreadPriority(GetCurrentThread(), priority));
            EXPECT_EQ(CurrentThreadPriority(), priority);
        }
    }).join();
}

TEST(WindowsThread, TheIdIsTheSystemsOwn)
{
    EXPECT_EQ(CurrentThreadId(), GetCurrentThreadId());
}

TEST(WindowsEvent, ASignalIsRememberedOnceAndTakenByTheWait)
{
    WakeEvent* const event = OpenWakeEvent();
    ASSERT_NE(event, nullptr);
    SignalWakeEvent(event);
    SignalWakeEvent(event);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    CloseWakeEvent(event);
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags)); // closed
}

} // namespace
