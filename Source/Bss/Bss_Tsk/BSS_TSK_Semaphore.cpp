// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The count is only looked at and never changed under the mutex; what the mutex guards is the
// moment between a thread's last look and its sleep.
#include "Bss/Bss_Tsk/BSS_TSK_Semaphore.h"

#include "Bss/Bss_Err/BSS_ERR_ErrorBase.h"
#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"

#include <algorithm>
#include <boost/chrono/duration.hpp>
#include <boost/system/system_error.hpp>
#include <boost/thread/exceptions.hpp>
#include <boost/thread/thread_only.hpp>

namespace BSS::TSK {

namespace {

// About as long as going to sleep and being woken takes the processor at least. Threads that hand a turn to
// each other then find it without either; one that waits for long has lost little.
constexpr int SPIN_ROUNDS = 100;

constexpr std::int64_t LONGEST_SLEEP_US = 3600LL * 1000000; // far from where a system's clock arithmetic ends

class CountedC
{
public:
    explicit CountedC(std::atomic<std::uint32_t>& count) noexcept : m_count(count) { m_count.fetch_add(1); }
    ~CountedC() { m_count.fetch_sub(1); }
    CountedC(const CountedC&) = delete;
    CountedC& operator=(const CountedC&) = delete;

private:
    std::atomic<std::uint32_t>& m_count;
};

} // namespace

SemaphoreC::SemaphoreC(std::uint32_t count) : m_count(count) {}

SemaphoreC::~SemaphoreC() = default;

bool SemaphoreC::lock(int timeoutMs)
{
    if (tryLock()) return true;
    const std::int64_t deadlineUs =
        SemaphoreDeadlineUs(HAL::TickMicroseconds(), timeoutMs); // looking counts too
    return (timeoutMs != 0 && SpinToTake()) || WaitUntil(deadlineUs);
}

void SemaphoreC::WaitOrThrow()
{
    if (!SpinToTake()) WaitUntil(SEMAPHORE_NO_DEADLINE);
}

bool SemaphoreC::SpinToTake() noexcept
{
    for (int round = 0; round < SPIN_ROUNDS; ++round) {
        HAL::SpinPause();
        if (tryLock()) return true;
    }
    return false;
}

void SemaphoreC::WakeOne()
{
    {
        // A thread that has looked at the count in vain and does not yet sleep holds the mutex.
        const boost::lock_guard<boost::mutex> guard(m_mutex);
    }
    m_posted.notify_one(); // not before: the thread would wake only to wait for the mutex
}

bool SemaphoreC::WaitUntil(std::int64_t deadlineUs)
try {
    const boost::this_thread::disable_interruption undisturbed;
    boost::unique_lock<boost::mutex> guard(m_mutex);
    const CountedC counted(m_nWaiting);
    // Sequentially consistent after the count of waiters, as unlock is with the two the other way round.
    while (!Take(m_count.load())) {
        if (HAL::TakeFault(HAL::FaultT::SemaphoreWait)) throw boost::condition_error();
        if (deadlineUs == SEMAPHORE_NO_DEADLINE) {
            m_posted.wait(guard);
            continue;
        }
        const std::int64_t left = deadlineUs - HAL::TickMicroseconds();
        if (left <= 0) return false;
        m_posted.wait_for(guard, boost::chrono::microseconds(std::min(left, LONGEST_SLEEP_US)));
    }
    return true;
} catch (const boost::system::system_error&) {
    // What every failure of Boost's mutexes and condition variables is.
    throw ERR::ErrorBaseC("waiting for a semaphore failed", RC_SERVICE_FAILED);
}

} // namespace BSS::TSK
