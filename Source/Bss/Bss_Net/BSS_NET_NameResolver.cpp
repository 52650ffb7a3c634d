// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_NameResolver.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace BSS::NET {

namespace {

// How late a cancellation may be noticed.
constexpr std::chrono::milliseconds LOOK_INTERVAL(20);

} // namespace

// Shared between the asking thread and the waiting one; whoever is last destroys it.
struct NameResolverC::QuestionT
{
    std::mutex lock;
    std::condition_variable answered;
    bool bAnswered = false;
    int error = 0;
    std::vector<HAL::SocketAddressT> addresses;

    bool wait(const std::function<bool()>& isCancelled)
    {
        std::unique_lock<std::mutex> guard(lock);
        while (!answered.wait_for(guard, LOOK_INTERVAL, [this] { return bAnswered; })) {
            if (isCancelled()) return false;
        }
        return true;
    }
};

NameResolverC::NameResolverC(ResolveT ask) : m_ask(std::move(ask)) {}

int NameResolverC::resolve(const std::string& name, std::uint16_t port,
                           const std::function<bool()>& isCancelled,
                           std::vector<HAL::SocketAddressT>& addresses)
{
    addresses.clear();
    if (m_last && !m_last->wait(isCancelled)) return CANCELLED;
    m_last = std::make_shared<QuestionT>();
    std::thread([question = m_last, ask = m_ask, name, port] {
        std::vector<HAL::SocketAddressT> found;
        const int error = ask(name, port, found);
        const std::lock_guard<std::mutex> guard(question->lock);
        question->error = error;
        question->addresses = std::move(found);
        question->bAnswered = true;
        question->answered.notify_all();
    }).detach();
    if (!m_last->wait(isCancelled)) return CANCELLED;
    const std::shared_ptr<QuestionT> question = std::exchange(m_last, nullptr);
    addresses = std::move(question->addresses);
    return question->error;
}

} // namespace BSS::NET
