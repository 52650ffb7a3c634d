// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Ends the process when one test takes longer than it may, so that a run of many tests in one process cannot
// hang. A thread of its own watches, from the first test on; the child of a death test has none, so that it
// may have what the system gives to processes with one thread only.
#pragma once

#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Support {

class TestLimit final : public testing::EmptyTestEventListener
{
public:
    explicit TestLimit(std::chrono::seconds limit);
    ~TestLimit() override;
    TestLimit(const TestLimit&) = delete;
    TestLimit& operator=(const TestLimit&) = delete;

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

private:
    using ClockT = std::chrono::steady_clock;

    void Watch();

    const std::chrono::seconds m_limit;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::optional<ClockT::time_point> m_deadline; ///< of the test that runs
    std::string m_test;
    bool m_over = false;
    std::thread m_watcher;
};

} // namespace Support
