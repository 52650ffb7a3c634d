// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// From the post to the execution of empty commands, each a shared message of its own, as each library makes
// one.
#include "Bench_TaskCases.h"

#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <tbb/concurrent_queue.h>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned s_uiMessages = 400000; // of all producers together
constexpr unsigned s_uiBounded = 1024;

std::atomic<unsigned> s_uiExecuted; // written by the executing thread alone

std::atomic<bool> s_bAll;

void CountOne()
{
    const unsigned uiCount = s_uiExecuted.load(std::memory_order_relaxed) + 1;
    s_uiExecuted.store(uiCount, std::memory_order_relaxed);
    if (uiCount != s_uiMessages) return;
    s_bAll.store(true);
    s_bAll.notify_one();
}

struct MessageT
{
    virtual ~MessageT() = default;
    virtual void execute() { CountOne(); }
};

class EmptyCommandC final : public BSS::TSK::CommandC
{
public:
    EmptyCommandC() : CommandC("bench") {}
    void execute() override { CountOne(); }
};

void OnProducers(unsigned nProducers, const std::function<void(unsigned)>& post)
{
    s_uiExecuted = 0;
    s_bAll = false;
    std::vector<std::thread> threads;
    for (unsigned n = 0; n < nProducers; ++n)
        threads.emplace_back([&post, nProducers] { post(s_uiMessages / nProducers); });
    for (std::thread& thread : threads)
        thread.join();
    s_bAll.wait(false);
}

void PostOurs(BSS::TSK::CommandTaskC& task, unsigned nProducers)
{
    OnProducers(nProducers, [&](unsigned uiCount) {
        for (unsigned i = 0; i < uiCount; ++i) {
            const BSS::TSK::CommandPtrT command = BSS::UTI::MakeShared<EmptyCommandC>();
            while (task.postCommand(command) != BSS::RC_OK)
                std::this_thread::yield();
        }
    });
}

class AsioC
{
public:
    AsioC() : m_thread([this] { m_context.run(); }) {}
    ~AsioC()
    {
        m_work.reset();
        m_thread.join();
    }
    AsioC(const AsioC&) = delete;
    AsioC& operator=(const AsioC&) = delete;

    void Post(unsigned nProducers)
    {
        OnProducers(nProducers, [&](unsigned uiCount) {
            for (unsigned i = 0; i < uiCount; ++i)
                boost::asio::post(m_context,
                                  [message = std::make_shared<MessageT>()] { message->execute(); });
        });
    }

private:
    boost::asio::io_context m_context{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work{m_context.get_executor()};
    std::thread m_thread;
};

class TbbC
{
public:
    TbbC()
    {
        m_queue.set_capacity(s_uiBounded);
        m_thread = std::thread([this] { Consume(); });
    }
    ~TbbC()
    {
        m_queue.push(nullptr);
        m_thread.join();
    }
    TbbC(const TbbC&) = delete;
    TbbC& operator=(const TbbC&) = delete;

    void Post(unsigned nProducers)
    {
        OnProducers(nProducers, [&](unsigned uiCount) {
            for (unsigned i = 0; i < uiCount; ++i)
                m_queue.push(std::make_shared<MessageT>());
        });
    }

private:
    void Consume()
    {
        for (;;) {
            std::shared_ptr<MessageT> message;
            m_queue.pop(message);
            if (!message) return;
            message->execute();
        }
    }

    tbb::concurrent_bounded_queue<std::shared_ptr<MessageT>> m_queue;
    std::thread m_thread;
};

} // namespace

void RunPost(const OptionsT& options)
{
    const auto ample = MakeTask(1u << 30);
    const auto bounded = MakeTask(s_uiBounded);
    AsioC asio;
    TbbC tbb;
    const char* const aszAmple[] = {"", "at least 1.8", "at least 1.8", "", "at least 1.4"};
    const char* const aszBounded[] = {"", "at least 0.9", "at least 1.5", "", "at least 2.0"};
    for (const unsigned nProducers : {1u, 2u, 4u}) {
        std::printf("%u producers, %u messages\n", nProducers, s_uiMessages);
        std::vector<CandidateT> candidates = {{"asio::post", [&] { asio.Post(nProducers); }},
                                              {"ours, ample", [&] { PostOurs(*ample, nProducers); }},
                                              {"TBB bounded queue", [&] { tbb.Post(nProducers); }},
                                              {"ours, 1024", [&] { PostOurs(*bounded, nProducers); }}};
        RunInterleaved(candidates, options.nRounds);
        PrintRates(candidates, s_uiMessages * 1e-6, "M/s", {0, 2});
        const auto median = [&](std::size_t n) { return MedianOf(candidates[n].vecClockSeconds); };
        PrintRatio(std::to_string(nProducers) + " producers, ours / asio, messages per second",
                   median(0) / median(1), aszAmple[nProducers]);
        PrintRatio(std::to_string(nProducers) + " producers, ours / TBB, messages per second",
                   median(2) / median(3), aszBounded[nProducers]);
    }
    EndTask(*ample);
    EndTask(*bounded);
}

void RunLatency(const OptionsT& options)
{
    constexpr unsigned SAMPLES = 1000;
    constexpr double PAUSE_SECONDS = 100e-6; // long enough for the other thread to fall asleep
    const auto pause = [] {
        const double dEnd = ClockSeconds() + PAUSE_SECONDS;
        while (ClockSeconds() < dEnd) {
        }
    };
    const auto task = MakeTask(100);
    std::atomic<double> dWoken{0};
    std::mutex mutex;
    std::condition_variable changed;
    bool bPosted = false;
    bool bOver = false;
    std::thread waiting([&] {
        std::unique_lock<std::mutex> guard(mutex);
        for (;;) {
            changed.wait(guard, [&] { return bPosted || bOver; });
            if (bOver) return;
            bPosted = false;
            dWoken.store(ClockSeconds());
        }
    });
    const auto sample = [&](const std::function<void()>& wake) {
        dWoken.store(0);
        pause();
        const double dBegin = ClockSeconds();
        wake();
        while (dWoken.load() == 0) {
        }
        return dWoken.load() - dBegin;
    };
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int iRound = 0; iRound < options.nRounds; ++iRound) {
        std::vector<double> oursNow;
        std::vector<double> theirsNow;
        for (unsigned i = 0; i < SAMPLES; ++i) {
            theirsNow.push_back(sample([&] {
                {
                    const std::lock_guard<std::mutex> guard(mutex);
                    bPosted = true;
                }
                changed.notify_one(); // not before: the thread would wake only to wait for the mutex
            }));
            const auto command = BSS::TSK::MakeCommand("bench", [&] { dWoken.store(ClockSeconds()); });
            oursNow.push_back(sample([&] { task->postCommand(command); }));
        }
        ours.push_back(MedianOf(oursNow));
        theirs.push_back(MedianOf(theirsNow));
        ratios.push_back(ours.back() / theirs.back());
    }
    {
        const std::lock_guard<std::mutex> guard(mutex);
        bOver = true;
        changed.notify_one();
    }
    waiting.join();
    EndTask(*task);
    std::printf("  median wake-up: condition variable %.2f us, idle task %.2f us\n", MedianOf(theirs) * 1e6,
                MedianOf(ours) * 1e6);
    PrintRatio("wake-up, task / condition variable (medians)", MedianOf(ours) / MedianOf(theirs),
               "at most 1.2");
}

void RunBusy(const OptionsT&)
{
    constexpr unsigned POSTS = 100000;
    const auto task = MakeTask(POSTS + 10);
    std::atomic<bool> bBusy{false};
    std::atomic<bool> bGo{false};
    task->postCommand(BSS::TSK::MakeCommand("busy", [&] {
        bBusy = true;
        while (!bGo.load()) {
        }
    }));
    while (!bBusy.load()) {
    }
    // Two marks that strace shows, so that the calls between them can be counted.
    std::fprintf(stderr, "BEGIN\n");
    for (unsigned i = 0; i < POSTS; ++i) {
        if (task->postCommand(BSS::UTI::MakeShared<EmptyCommandC>()) != BSS::RC_OK) std::abort();
    }
    std::fprintf(stderr, "END\n");
    bGo = true;
    EndTask(*task);
    std::printf("  %u posts\n", POSTS);
}

} // namespace Bench
