// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Locks against what the standard library has for the same.
#include "Bench_TaskCases.h"

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Tsk/BSS_TSK_Semaphore.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned s_uiAlone = 20000000;
constexpr unsigned s_uiContended = 4000000; // of all threads together

template<typename MutexT>
void Alone(MutexT& mutex)
{
    for (unsigned i = 0; i < s_uiAlone; ++i) {
        mutex.lock();
        asm volatile("" ::: "memory");
        mutex.unlock();
    }
}

template<typename MutexT>
void Contended(MutexT& mutex, unsigned nThreads)
{
    unsigned long ulCount = 0;
    std::vector<std::thread> threads;
    for (unsigned n = 0; n < nThreads; ++n) {
        threads.emplace_back([&] {
            for (unsigned i = 0; i < s_uiContended / nThreads; ++i) {
                mutex.lock();
                ++ulCount;
                asm volatile("" ::: "memory");
                mutex.unlock();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    if (ulCount != s_uiContended / nThreads * nThreads) std::abort();
}

// Nothing but the two atomic steps that no mutex with waiting threads can do without: what is left to gain.
class TwoStepsC
{
public:
    void lock()
    {
        std::uint32_t free = 0;
        while (!m_word.compare_exchange_strong(free, 1, std::memory_order_acquire))
            free = 0;
    }
    void unlock()
    {
        std::uint32_t held = 1;
        m_word.compare_exchange_strong(held, 0, std::memory_order_release);
    }

private:
    std::atomic<std::uint32_t> m_word{0};
};

// The plain way to make one.
class PlainSemaphoreC
{
public:
    void post()
    {
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            ++m_uiCount;
        }
        m_posted.notify_one();
    }
    void wait()
    {
        std::unique_lock<std::mutex> guard(m_mutex);
        m_posted.wait(guard, [this] { return m_uiCount > 0; });
        --m_uiCount;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_posted;
    unsigned m_uiCount = 0;
};

template<typename SemaphoreT>
void PostAndWait(SemaphoreT& semaphore)
{
    for (unsigned i = 0; i < s_uiAlone / 4; ++i) {
        semaphore.post();
        asm volatile("" ::: "memory");
        semaphore.wait();
    }
}

template<typename SemaphoreT>
void PingPong(SemaphoreT& there, SemaphoreT& back)
{
    constexpr unsigned ROUNDS = 50000;
    std::thread other([&] {
        for (unsigned i = 0; i < ROUNDS; ++i) {
            there.wait();
            back.post();
        }
    });
    for (unsigned i = 0; i < ROUNDS; ++i) {
        there.post();
        back.wait();
    }
    other.join();
}

// From the post to the moment at which the other thread has it, who has been asleep.
template<typename SemaphoreT>
double MedianOfWaking(SemaphoreT& semaphore)
{
    constexpr unsigned SAMPLES = 500;
    constexpr double PAUSE_SECONDS = 100e-6; // long enough for the other thread to fall asleep
    std::atomic<double> dWoken{0};
    std::thread other([&] {
        for (unsigned i = 0; i < SAMPLES; ++i) {
            semaphore.wait();
            dWoken.store(ClockSeconds());
        }
    });
    std::vector<double> seconds;
    for (unsigned i = 0; i < SAMPLES; ++i) {
        dWoken.store(0);
        double dBegin = ClockSeconds();
        for (const double dEnd = dBegin + PAUSE_SECONDS; dBegin < dEnd;)
            dBegin = ClockSeconds();
        semaphore.post();
        while (dWoken.load() == 0) {
        }
        seconds.push_back(dWoken.load() - dBegin);
    }
    other.join();
    return MedianOf(seconds);
}

double RatioOf(const std::vector<CandidateT>& candidates)
{
    return MedianOf(candidates[1].vecClockSeconds) / MedianOf(candidates[0].vecClockSeconds);
}

} // namespace

void PrintRatio(const std::string& strWhat, double dRatio, const char* pszAsked)
{
    std::printf("  >> %-52s %6.2f   (asked: %s)\n", strWhat.c_str(), dRatio, pszAsked);
    std::fflush(stdout);
}

void RunMutex(const OptionsT& options)
{
    // The standard library leaves out atomic operations in a process that has never had a second thread.
    std::thread([] {}).join();
    std::recursive_mutex theirs;
    BSS::TSK::MutexC ours;
    TwoStepsC bare;
    std::vector<CandidateT> alone = {{"std::recursive_mutex", [&] { Alone(theirs); }},
                                     {"MutexC", [&] { Alone(ours); }},
                                     {"two compare-and-swaps", [&] { Alone(bare); }}};
    RunInterleaved(alone, options.nRounds);
    PrintTimes(alone);
    PrintRatio("uncontended, MutexC / std::recursive_mutex", RatioOf(alone), "at most 0.7");
    for (const unsigned nThreads : {2u, 4u}) {
        std::vector<CandidateT> contended = {{"std::recursive_mutex", [&] { Contended(theirs, nThreads); }},
                                             {"MutexC", [&] { Contended(ours, nThreads); }}};
        RunInterleaved(contended, options.nRounds);
        PrintTimes(contended);
        PrintRatio(std::to_string(nThreads) + " threads, MutexC / std::recursive_mutex", RatioOf(contended),
                   "at most 1.2");
    }
}

void RunSemaphore(const OptionsT& options)
{
    std::thread([] {}).join();
    PlainSemaphoreC plain[2];
    BSS::TSK::SemaphoreC ours[2];
    std::vector<CandidateT> alone = {{"plain", [&] { PostAndWait(plain[0]); }},
                                     {"SemaphoreC", [&] { PostAndWait(ours[0]); }}};
    RunInterleaved(alone, options.nRounds);
    PrintTimes(alone);
    PrintRatio("post and wait, SemaphoreC / plain", RatioOf(alone), "at most 1.0");
    std::vector<CandidateT> pingPong = {{"plain", [&] { PingPong(plain[0], plain[1]); }},
                                        {"SemaphoreC", [&] { PingPong(ours[0], ours[1]); }}};
    RunInterleaved(pingPong, options.nRounds);
    PrintTimes(pingPong);
    PrintRatio("there and back between two threads", RatioOf(pingPong), "at most 1.0");
    std::vector<double> waking[2];
    for (int iRound = 0; iRound < options.nRounds; ++iRound) {
        waking[0].push_back(MedianOfWaking(plain[0]));
        waking[1].push_back(MedianOfWaking(ours[0]));
    }
    std::printf("  median waking: plain %.2f us, SemaphoreC %.2f us\n", MedianOf(waking[0]) * 1e6,
                MedianOf(waking[1]) * 1e6);
    PrintRatio("waking a thread that sleeps", MedianOf(waking[1]) / MedianOf(waking[0]), "nothing");
}

} // namespace Bench
