// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The prefix of log lines, as a thread keeps it.
#include "Bss/Bss_Dbg/BSS_DBG_LogPrefix.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

using namespace BSS::DBG;

namespace {

LogLineContextT ContextOfThisThread(const BSS::HAL::WallTime& time)
{
    LogLineContextT context;
    context.localTime = BSS::HAL::LocalTimeOf(time.seconds);
    context.utcTime = BSS::HAL::UtcTimeOf(time.seconds);
    context.localTime.millisecond = context.utcTime.millisecond = time.millisecond;
    context.threadName = BSS::HAL::CurrentThreadName();
    context.threadId = BSS::HAL::CurrentThreadId();
    context.threadPriority = BSS::HAL::CurrentThreadPriority();
    return context;
}

std::string Put(PrefixKind kind, int level, const BSS::HAL::WallTime& time)
{
    char buffer[512];
    BSS::UTI::FormatOutT<char> out(buffer, sizeof buffer);
    PutPrefix(out, kind, level, time);
    return {buffer, out.Length()};
}

TEST(LogPrefix, IsWhatThePureFunctionMakes)
{
    const BSS::HAL::WallTime time{1769903998, 7};
    LogLineContextT context = ContextOfThisThread(time);
    for (const PrefixKind kind :
         {PrefixKind::None, PrefixKind::Full, PrefixKind::Time, PrefixKind::UtcTime}) {
        for (context.level = 0; context.level <= 8; ++context.level) {
            EXPECT_EQ(Put(kind, context.level, time), PrefixedLine(kind, context, ""));
        }
    }
}

TEST(LogPrefix, MillisecondsAreThoseOfEachLine)
{
    for (const int millisecond : {7, 8, 8, 120, 999, 0}) {
        const std::string text = Put(PrefixKind::UtcTime, LEVEL_INFO, {1769903998, millisecond});
        EXPECT_EQ(text, BSS::UTI::Format("[31/01/2026 23:59:58.%03d UTC]", millisecond));
    }
}

TEST(LogPrefix, LongestNameOfAThreadHasRoomHoweverItIsWritten)
{
    std::thread([] {
        const BSS::HAL::WallTime time{1769903998, 7};
        BSS::HAL::SetCurrentThreadName(std::string(63, '\x01').c_str());
        LogLineContextT context = ContextOfThisThread(time);
        context.level = LEVEL_FINEST;
        context.threadName = WithoutControls(context.threadName);
        EXPECT_EQ(context.threadName.size(), 4u * 63);
        EXPECT_EQ(Put(PrefixKind::Full, LEVEL_FINEST, time), PrefixedLine(PrefixKind::Full, context, ""));
    }).join();
}

TEST(LogPrefix, SystemTimeIsUtcDayMonthYear)
{
    EXPECT_EQ(Put(PrefixKind::UtcTime, LEVEL_INFO, {1769903998, 42}), "[31/01/2026 23:59:58.042 UTC]");
}

} // namespace
