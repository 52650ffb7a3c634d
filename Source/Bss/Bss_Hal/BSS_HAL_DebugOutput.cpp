// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The sink is called with the lock held, so that a sink which has been taken away is known to be out of use.
// The thread's own flag keeps a sink that writes debugger output from waiting for itself.
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"

#include <mutex>

namespace BSS::HAL {

namespace {

constinit StaticLockC s_lock;
constinit DebugOutputSink s_sink = nullptr;
constinit void* s_context = nullptr;
constinit thread_local bool t_inSink = false;

class SinkScope
{
public:
    SinkScope() noexcept { t_inSink = true; }
    ~SinkScope() { t_inSink = false; }
    SinkScope(const SinkScope&) = delete;
    SinkScope& operator=(const SinkScope&) = delete;
};

} // namespace

void DebugOutput(const wchar_t* text) noexcept
{
    if (t_inSink) return;
    const std::lock_guard<StaticLockC> guard(s_lock);
    const SinkScope scope;
    if (text == nullptr) text = L"(null)";
    if (s_sink != nullptr) {
        s_sink(text, s_context);
    } else {
        SystemDebugOutput(text);
    }
}

void SetDebugOutputSink(DebugOutputSink sink, void* context) noexcept
{
    std::unique_lock<StaticLockC> guard(s_lock, std::defer_lock);
    if (!t_inSink) guard.lock(); // inside the sink this thread holds the lock already
    s_sink = sink;
    s_context = context;
}

} // namespace BSS::HAL
