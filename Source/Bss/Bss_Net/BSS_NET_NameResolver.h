// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Names to addresses without waiting for the system longer than the caller wants: it may take many seconds,
// and a client that is to stop cannot wait for that.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_SocketAddress.h"

#include <cstddef>
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

    /// As HAL::ResolveName, but ends with CANCELLED soon after `isCancelled` says so, and with
    /// HAL::ResolveResourcesError when the question cannot be asked.
    virtual int resolve(const std::string& name, std::uint16_t port, const std::function<bool()>& isCancelled,
                        std::vector<HAL::SocketAddressT>& addresses) = 0;
};

/// What the system is asked by; HAL::ResolveName outside of tests.
using ResolveT = std::function<int(const std::string&, std::uint16_t, std::vector<HAL::SocketAddressT>&)>;

/// Asks on a thread of its own, as nothing ends a question that the system has been asked. One that was
/// cancelled goes on in the background until the system answers, which touches nothing of the object or its
/// owner: both may go. Another one by the same object waits for it first; of all objects together at most
/// MAX_QUESTIONS are under way, and further ones wait until one is answered.
///
/// A process may end while a question is under way; a library that asks must not be unloaded before.
class NameResolverC final : public NameResolverI
{
public:
    static constexpr std::size_t MAX_QUESTIONS = 16;

    explicit NameResolverC(ResolveT ask = &HAL::ResolveName);
    int resolve(const std::string& name, std::uint16_t port, const std::function<bool()>& isCancelled,
                std::vector<HAL::SocketAddressT>& addresses) override;

private:
    struct QuestionT;

    bool ask(const std::string& name, std::uint16_t port);

    const ResolveT m_ask;
    std::shared_ptr<QuestionT> m_last;
};

} // namespace BSS::NET
