// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What only this platform's events can do: descriptors in the wait list, and threads that end while they
// wait.
#include "Bss/Bss_Hal/BSS_HAL_WaitSlot_Posix.h"
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include "Support/Eventually.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace BSS::HAL;
using KindT = WaitAnswerT::Kind;

namespace {

constexpr std::uint32_t LONG_MS = 20000;

class PipeC
{
public:
    PipeC()
    {
        EXPECT_EQ(::pipe(m_ends), 0);
        m_handle = MakeNativeWaitable(m_ends[0]);
    }
    ~PipeC()
    {
        CloseWaitHandle(m_handle);
        CloseReading();
        ::close(m_ends[1]);
    }
    PipeC(const PipeC&) = delete;
    PipeC& operator=(const PipeC&) = delete;
    void Write() const { EXPECT_EQ(::write(m_ends[1], "x", 1), 1); }
    void Read() const
    {
        char byte = 0;
        EXPECT_EQ(::read(m_ends[0], &byte, 1), 1);
    }
    void CloseReading()
    {
        if (m_ends[0] >= 0) ::close(m_ends[0]);
        m_ends[0] = -1;
    }
    WaitHandleT Handle() const { return m_handle; }

private:
    int m_ends[2] = {-1, -1};
    WaitHandleT m_handle = NO_WAIT_HANDLE;
};

TEST(WaitableDescriptor, IsSignalledWhileItCanBeRead)
{
    const PipeC pipe;
    EXPECT_FALSE(WaitForOne(pipe.Handle(), 0));
    pipe.Write();
    EXPECT_TRUE(WaitForOne(pipe.Handle(), 0));
    EXPECT_TRUE(WaitForOne(pipe.Handle(), 0));
    pipe.Read();
    EXPECT_FALSE(WaitForOne(pipe.Handle(), 1));
}

TEST(WaitableDescriptor, WakesAThreadThatAlsoWaitsForEvents)
{
    const PipeC pipe;
    const WaitHandleT event = MakeWaitEvent(ResetMode::Auto, false);
    for (int round = 0; round < 200; ++round) {
        std::thread writer([&] { pipe.Write(); });
        const WaitHandleT handles[] = {event, pipe.Handle()};
        const WaitAnswerT answer = WaitForAny(handles, 2, LONG_MS);
        writer.join();
        pipe.Read();
        ASSERT_EQ(answer.kind, KindT::Signalled);
        ASSERT_EQ(answer.index, 1u);
    }
    CloseWaitHandle(event);
}

TEST(WaitableDescriptor, AnEventWakesAThreadThatAlsoWaitsForDescriptors)
{
    const PipeC pipe;
    const WaitHandleT event = MakeWaitEvent(ResetMode::Auto, false);
    for (int round = 0; round < 500; ++round) {
        std::thread setter([&] { SetWaitEvent(event); });
        const WaitHandleT handles[] = {pipe.Handle(), event};
        const WaitAnswerT answer = WaitForAny(handles, 2, LONG_MS);
        setter.join();
        ASSERT_EQ(answer.kind, KindT::Signalled);
        ASSERT_EQ(answer.index, 1u);
        ASSERT_FALSE(WaitForOne(event, 0));
    }
    CloseWaitHandle(event);
}

TEST(WaitableDescriptor, OneThatWasClosedIsAnInvalidHandle)
{
    PipeC pipe;
    const WaitHandleT handle = pipe.Handle();
    // The first wait of a thread makes a descriptor, which would take the number that becomes free.
    EXPECT_EQ(WaitForAny(&handle, 1, 0).kind, KindT::TimedOut);
    pipe.CloseReading();
    const WaitAnswerT answer = WaitForAny(&handle, 1, LONG_MS);
    EXPECT_EQ(answer.kind, KindT::Failed);
    EXPECT_EQ(answer.error, WAIT_ERROR_INVALID_HANDLE);
}

TEST(WaitableDescriptor, CannotBeSetResetOrPulsed)
{
    const PipeC pipe;
    EXPECT_FALSE(SetWaitEvent(pipe.Handle()));
    EXPECT_FALSE(ResetWaitEvent(pipe.Handle()));
    EXPECT_FALSE(PulseWaitEvent(pipe.Handle()));
}

TEST(WaitableDescriptor, NoDescriptorIsNoHandle)
{
    EXPECT_EQ(MakeNativeWaitable(-1), NO_WAIT_HANDLE);
}

TEST(Waitable, ClosingAHandleEndsTheWaitsForIt)
{
    const WaitHandleT handle = MakeWaitEvent(ResetMode::Auto, false);
    std::atomic<bool> began{false};
    WaitAnswerT answer;
    std::thread waiting([&] {
        began = true;
        answer = WaitForAny(&handle, 1, LONG_MS);
    });
    EXPECT_TRUE(Support::Eventually([&] { return began.load(); }));
    CloseWaitHandle(handle);
    waiting.join();
    EXPECT_EQ(answer.kind, KindT::Failed);
    EXPECT_EQ(answer.error, WAIT_ERROR_INVALID_HANDLE);
}

std::size_t CountWaiting(WaitHandleT handle)
{
    const std::lock_guard<std::mutex> guard(WaitLock());
    std::size_t nWaiting = 0;
    for (const WaitNodeT* node = SlotOf(handle)->first; node != nullptr; node = node->next)
        ++nWaiting;
    return nWaiting;
}

// One pulse for threads that wait, each of which counts itself when it goes on.
void PulseOnce(ResetMode mode, int nExpected)
{
    constexpr int THREADS = 3;
    const WaitHandleT handle = MakeWaitEvent(mode, false);
    std::atomic<int> released{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back([&] { released += WaitForOne(handle, LONG_MS) ? 1 : 0; });
    EXPECT_TRUE(Support::Eventually([&] { return CountWaiting(handle) == THREADS; }));
    EXPECT_TRUE(PulseWaitEvent(handle));
    EXPECT_EQ(CountWaiting(handle), static_cast<std::size_t>(THREADS - nExpected));
    EXPECT_TRUE(Support::Eventually([&] { return released.load() == nExpected; }));
    CloseWaitHandle(handle); // lets the others go
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(released.load(), nExpected);
}

TEST(Waitable, APulseOfAManualResetEventReleasesAllThatWait)
{
    PulseOnce(ResetMode::Manual, 3);
}

TEST(Waitable, APulseOfAnAutoResetEventReleasesOne)
{
    PulseOnce(ResetMode::Auto, 1);
}

TEST(Waitable, AnOldHandleNeverStandsForANewEvent)
{
    const WaitHandleT old = MakeWaitEvent(ResetMode::Auto, false);
    CloseWaitHandle(old);
    const WaitHandleT fresh = MakeWaitEvent(ResetMode::Auto, false);
    EXPECT_FALSE(SetWaitEvent(old));
    EXPECT_FALSE(WaitForOne(fresh, 0));
    EXPECT_FALSE(CloseWaitHandle(old));
    EXPECT_TRUE(CloseWaitHandle(fresh));
}

} // namespace
