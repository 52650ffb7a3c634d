// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/TestLimit.h"

#include "Support/EndProcess.h"

#include <cstdio>
#include <cstdlib>

namespace Support {

TestLimit::TestLimit(std::chrono::seconds limit) : m_limit(limit) {}

TestLimit::~TestLimit()
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_over = true;
    }
    m_changed.notify_one();
    if (m_watcher.joinable()) m_watcher.join();
}

void TestLimit::OnTestStart(const testing::TestInfo& test)
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_test = std::string(test.test_suite_name()) + "." + test.name();
        m_deadline = ClockT::now() + m_limit;
    }
    if (!m_watcher.joinable()) m_watcher = std::thread([this] { Watch(); });
    m_changed.notify_one();
}

void TestLimit::OnTestEnd(const testing::TestInfo&)
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_deadline.reset();
    }
    m_changed.notify_one();
}

void TestLimit::Watch()
{
    std::unique_lock<std::mutex> lock(m_lock);
    while (!m_over) {
        if (!m_deadline) {
            m_changed.wait(lock);
        } else if (ClockT::now() < *m_deadline) {
            m_changed.wait_until(lock, *m_deadline);
        } else {
            std::fprintf(stderr, "[  FAILED  ] %s takes longer than its limit\n", m_test.c_str());
            std::fflush(stderr);
            EndProcess(EXIT_FAILURE);
        }
    }
}

} // namespace Support
