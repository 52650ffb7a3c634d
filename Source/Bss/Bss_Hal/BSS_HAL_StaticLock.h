// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A lock for objects that exist before any code has run and after all destructors have: it is initialised by
// the compiler on every platform and has nothing to destroy, nor has anything that it uses, which neither
// std::mutex nor the waiting of std::atomic promises. Not recursive. For short sections on the lower floors;
// everything else uses the framework's mutex.
#pragma once

#include <atomic>
#include <cstdint>

namespace BSS::HAL {

class StaticLockC
{
public:
    void lock() noexcept;
    void unlock() noexcept;

private:
    std::atomic<std::uintptr_t> m_state = 0;
};

} // namespace BSS::HAL
