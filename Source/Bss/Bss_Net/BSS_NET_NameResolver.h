// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Names to addresses without waiting for the system longer than the caller wants: it may take many seconds,
// and a client that is to stop cannot wait for that.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace BSS::NET {

class NameResolverI
{
public:
    virtual ~NameResolverI() = default;

    /// No error number that a system gives.
    static constexpr int CANCELLED = -1000000;

    /// As HAL::ResolveName, but ends with CANCELLED soon after `isCancelled` says so.
    virtual int resolve(const std::string& name, std::uint16_t port, const std::function<bool()>& isCancelled,
                        std::vector<HAL::SocketAddressT>& addresses) = 0;
};

/// What the system is asked by; HAL::ResolveName outside of tests.
using ResolveT = std::function<int(const std::string&, std::uint16_t, std::vector<HAL::SocketAddressT>&)>;

/// Asks on a thread of its own. A question that was cancelled goes on in the background until the system
/// answers; another one by the same object waits for it first, so that there is never more than one.
class NameResolverC final : public NameResolverI
{
public:
    explicit NameResolverC(ResolveT ask = &HAL::ResolveName);
    int resolve(const std::string& name, std::uint16_t port, const std::function<bool()>& isCancelled,
                std::vector<HAL::SocketAddressT>& addresses) override;

private:
    struct QuestionT;

    const ResolveT m_ask;
    std::shared_ptr<QuestionT> m_last;
};

} // namespace BSS::NET
