// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// CurrentThreadId for those who ask for it with every lock: a load where a thread-local variable is one, the
// function where it is not.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <cstdint>

namespace BSS::HAL {

#if defined(__linux__)

/// 0 until CurrentThreadId has been called on this thread. The model keeps the access a load in shared
/// libraries too.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint32_t t_threadId;

inline std::uint32_t CachedThreadId() noexcept
{
    const std::uint32_t id = t_threadId;
    return id != 0 ? id : CurrentThreadId();
}

#else

inline std::uint32_t CachedThreadId() noexcept
{
    return CurrentThreadId();
}

#endif

} // namespace BSS::HAL
