// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include "Bss/Bss_Hal/BSS_HAL_ProcessorCount_Posix.h"

#include <atomic>
#include <ctime>

namespace BSS::HAL {

namespace {

CalendarTime FieldsOf(std::int64_t seconds, std::tm* (*breakDown)(const std::time_t*, std::tm*)) noexcept
{
    const std::time_t count = seconds;
    std::tm fields = {};
    if (breakDown(&count, &fields) == nullptr) return {};
    return {fields.tm_year + 1900,
            fields.tm_mon + 1,
            fields.tm_mday,
            fields.tm_hour,
            fields.tm_min,
            fields.tm_sec,
            0};
}

struct KeptTimeT
{
    std::int64_t time;   // one number, so that a signal handler never leaves half of it behind
    std::uint64_t since; // of the processor's counter, before the system was asked
    std::uint64_t lasts; // 0: nothing kept
};

constexpr int MILLISECOND_BITS = 10;

std::int64_t Packed(const WallTime& time) noexcept
{
    return time.seconds * (1 << MILLISECOND_BITS) + time.millisecond;
}

WallTime Unpacked(std::int64_t time) noexcept
{
    return {time >> MILLISECOND_BITS, static_cast<int>(time & ((1 << MILLISECOND_BITS) - 1))};
}

constinit thread_local KeptTimeT t_kept = {};

constexpr std::uint64_t MOST_NS_PER_COUNT = 2; // 500 MHz
constexpr std::uint64_t MARGIN_NS = 1000;
constexpr std::uint64_t MILLISECOND_NS = 1'000'000;

WallTime AskAndKeep(std::uint64_t count) noexcept
{
    static const bool steady = ProcessorCountIsSteady();
    std::timespec now = {};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0) return {};
    const auto nanosecond = static_cast<std::uint64_t>(now.tv_nsec);
    const WallTime time = {now.tv_sec, static_cast<int>(nanosecond / MILLISECOND_NS)};
    const std::uint64_t left = MILLISECOND_NS - nanosecond % MILLISECOND_NS;
    // A signal handler on this thread may ask too: it must not find a time that is half another.
    t_kept.lasts = 0;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    t_kept.time = Packed(time);
    t_kept.since = count;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    if (steady && left > MARGIN_NS) t_kept.lasts = (left - MARGIN_NS) / MOST_NS_PER_COUNT;
    return time;
}

CalendarTime WithMillisecond(CalendarTime time, int millisecond) noexcept
{
    time.millisecond = millisecond;
    return time;
}

} // namespace

// What the system said last is true until the next millisecond begins, and a counter of the processor tells
// that less than that has gone by in less than half the time of a question to the system. Of its rate it is
// only known that no count is longer than MOST_NS_PER_COUNT; as all are shorter, a thread that keeps asking
// comes to the system some fifty times in each millisecond. A clock that is set takes effect within one.
WallTime WallTimeNow() noexcept
{
    const std::uint64_t count = ProcessorCount();
    if (count - t_kept.since < t_kept.lasts) return Unpacked(t_kept.time);
    return AskAndKeep(count);
}

CalendarTime LocalTimeOf(std::int64_t seconds) noexcept
{
    return FieldsOf(seconds, &::localtime_r);
}

CalendarTime UtcTimeOf(std::int64_t seconds) noexcept
{
    return FieldsOf(seconds, &::gmtime_r);
}

CalendarTime LocalTimeNow() noexcept
{
    const WallTime now = WallTimeNow();
    return WithMillisecond(LocalTimeOf(now.seconds), now.millisecond);
}

CalendarTime UtcTimeNow() noexcept
{
    const WallTime now = WallTimeNow();
    return WithMillisecond(UtcTimeOf(now.seconds), now.millisecond);
}

} // namespace BSS::HAL
