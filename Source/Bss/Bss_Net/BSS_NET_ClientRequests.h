// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What other threads want of a client's thread. What undoes an earlier request takes its place, so that there
// are never more than two, however often they are made. Safe from any thread.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>

namespace BSS::NET {

enum class ClientRequest
{
    Connect,
    Disconnect,
    Close,
    Stop ///< the thread is to end; nothing is taken behind it until reset()
};

class ClientRequestsC
{
public:
    void post(ClientRequest request)
    {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            if (m_count > 0 && m_requests[0] == ClientRequest::Stop) return;
            if (request != ClientRequest::Connect) m_count = 0;
            if (m_count > 0 && m_requests[m_count - 1] == request) return;
            m_requests[m_count++] = request;
        }
        m_posted.notify_one();
    }

    /// Waits that long at most for there to be one, by this queue alone. Not an interruption point.
    void await(std::chrono::milliseconds limit)
    {
        std::unique_lock<std::mutex> guard(m_lock);
        m_posted.wait_for(guard, limit, [this] { return m_count > 0; });
    }

    std::optional<ClientRequest> take()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_count == 0) return std::nullopt;
        const ClientRequest first = m_requests[0];
        if (first == ClientRequest::Stop) return first; // stays for all who look
        m_requests[0] = m_requests[1];
        --m_count;
        return first;
    }

    bool isEmpty() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_count == 0;
    }

    /// Whether an attempt to connect that is going on has become pointless.
    bool endsAttempt() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_count > 0 && m_requests[0] != ClientRequest::Connect;
    }

    bool isStopping() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_count > 0 && m_requests[0] == ClientRequest::Stop;
    }

    void reset()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_count = 0;
    }

private:
    mutable std::mutex m_lock;
    std::condition_variable m_posted;
    std::array<ClientRequest, 2> m_requests = {};
    std::size_t m_count = 0;
};

} // namespace BSS::NET
