// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Net/BSS_NET_NameResolver.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_Socket.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace BSS::NET {

namespace {

// How late a cancellation may be noticed.
constexpr std::chrono::milliseconds LOOK_INTERVAL(20);

// The questions that are under way in this process. Lives until its very end: threads that ask are not waited
// for.
class UnderWayC
{
public:
    static UnderWayC& instance()
    {
        static auto* const underWay = new UnderWayC;
        return *underWay;
    }

    bool begin(const std::function<bool()>& isCancelled)
    {
        std::unique_lock<std::mutex> guard(m_lock);
        while (!m_ended.wait_for(guard, LOOK_INTERVAL,
                                 [this] { return m_count < NameResolverC::MAX_QUESTIONS; })) {
            if (isCancelled()) return false;
        }
        ++m_count;
        return true;
    }
    void end()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        --m_count;
        m_ended.notify_one();
    }

private:
    std::mutex m_lock;
    std::condition_variable m_ended;
    std::size_t m_count = 0;
};

// Sockets are started for as long as the system is asked, whatever becomes of who has asked.
int AskSystem(const ResolveT& ask, const std::string& name, std::uint16_t port,
              std::vector<HAL::SocketAddressT>& found) noexcept
{
    int error = HAL::StartSockets();
    if (error != 0) return error;
    try {
        error = ask(name, port, found);
    } catch (...) { // nobody catches it on this thread
        error = HAL::ResolveResourcesError();
    }
    HAL::StopSockets();
    return error;
}

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
    void answer(int answeredError, std::vector<HAL::SocketAddressT>& found)
    {
        const std::lock_guard<std::mutex> guard(lock);
        error = answeredError;
        addresses.swap(found);
        bAnswered = true;
        answered.notify_all();
    }
};

NameResolverC::NameResolverC(ResolveT ask) : m_ask(std::move(ask)) {}

int NameResolverC::resolve(const std::string& name, std::uint16_t port,
                           const std::function<bool()>& isCancelled,
                           std::vector<HAL::SocketAddressT>& addresses)
{
    addresses.clear();
    if (m_last && !m_last->wait(isCancelled)) return CANCELLED;
    m_last = nullptr;
    if (!UnderWayC::instance().begin(isCancelled)) return CANCELLED;
    if (!ask(name, port)) {
        UnderWayC::instance().end();
        return HAL::ResolveResourcesError();
    }
    if (!m_last->wait(isCancelled)) return CANCELLED;
    const std::shared_ptr<QuestionT> question = std::exchange(m_last, nullptr);
    addresses = std::move(question->addresses);
    return question->error;
}

bool NameResolverC::ask(const std::string& name, std::uint16_t port)
{
    if (HAL::TakeFault(HAL::FaultT::Thread)) return false;
    try {
        const auto question = std::make_shared<QuestionT>();
        std::thread([question, ask = m_ask, name, port] {
            std::vector<HAL::SocketAddressT> found;
            const int error = AskSystem(ask, name, port, found);
            UnderWayC::instance().end();
            question->answer(error, found);
        }).detach();
        m_last = question;
        return true;
    } catch (const std::exception&) { // no memory, or no thread
        return false;
    }
}

} // namespace BSS::NET
