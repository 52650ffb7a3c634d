// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Logging on a thread that somebody wants to interrupt.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Support/DebugOutputCapture.h"
#include "Support/ReportCapture.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>
#include <string>

using namespace BSS::DBG;

namespace {

void WithoutInterruption(BSS::HAL::UndisturbedCallT call, void* context)
{
    const boost::this_thread::disable_interruption undisturbed;
    call(context);
}

// Waits, as a consumer that sends its lines somewhere does.
class Waiting final : public DbgLogConsumerC
{
public:
    Waiting() : DbgLogConsumerC("w", PrefixKind::None) {}
    std::string text;

protected:
    bool write(std::string_view lines) override
    {
        boost::this_thread::interruption_point();
        text += lines;
        return true;
    }
    bool flushDevice() override
    {
        boost::this_thread::interruption_point();
        text += "flushed\n";
        return true;
    }
};

TEST(LogInterruption, StaysPendingWhileTheThreadLogsAndFlushes)
{
    const Support::DebugOutputCapture debug;
    const Support::ReportCapture reports;
    Waiting consumer;
    bool pending = false;
    bool interrupted = false;
    BSS::HAL::SetUndisturbedRunner(&WithoutInterruption);
    boost::thread thread([&] {
        while (!boost::this_thread::interruption_requested())
            boost::this_thread::yield(); // bounded by the test's own time
        consumer.Log(LEVEL_INFO, "one");
        EXPECT_TRUE(consumer.flush());
        consumer.logText(LEVEL_INFO, "two");
        pending = boost::this_thread::interruption_requested();
        try {
            boost::this_thread::interruption_point();
        } catch (const boost::thread_interrupted&) {
            interrupted = true;
        }
    });
    thread.interrupt();
    thread.join();
    BSS::HAL::SetUndisturbedRunner(nullptr);
    EXPECT_EQ(consumer.text, "one\nflushed\ntwo\n");
    EXPECT_TRUE(pending);
    EXPECT_TRUE(interrupted);
    EXPECT_EQ(debug.Text(), L"");
    EXPECT_TRUE(reports.Reports().empty());
}

} // namespace
