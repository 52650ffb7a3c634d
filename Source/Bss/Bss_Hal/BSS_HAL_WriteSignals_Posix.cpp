// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Both signals go to the thread that writes, so it is enough that this thread holds them back, and takes
// those that came meanwhile away before it lets others through again.
#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"

#include <cerrno>
#include <csignal>
#include <ctime>

namespace BSS::HAL {

namespace {

class HoldBack
{
public:
    explicit HoldBack(int signal) noexcept : m_signal(signal), m_wasPending(IsPending())
    {
        const sigset_t set = Set();
        m_active = ::pthread_sigmask(SIG_BLOCK, &set, &m_before) == 0;
    }
    ~HoldBack()
    {
        if (!m_active) return;
        const int saved = errno;
        if (!m_wasPending && IsPending()) {
            const std::timespec now = {};
            const sigset_t set = Set();
            static_cast<void>(::sigtimedwait(&set, nullptr, &now));
        }
        static_cast<void>(::pthread_sigmask(SIG_SETMASK, &m_before, nullptr));
        errno = saved;
    }
    HoldBack(const HoldBack&) = delete;
    HoldBack& operator=(const HoldBack&) = delete;

private:
    sigset_t Set() const noexcept
    {
        sigset_t set;
        ::sigemptyset(&set);
        ::sigaddset(&set, m_signal);
        return set;
    }
    bool IsPending() const noexcept
    {
        sigset_t pending;
        return ::sigpending(&pending) == 0 && ::sigismember(&pending, m_signal) == 1;
    }

    const int m_signal;
    const bool m_wasPending;
    bool m_active = false;
    sigset_t m_before = {};
};

} // namespace

void RunWithoutWriteSignals(void (*call)(void* context), void* context)
{
    const HoldBack noReader(SIGPIPE);
    const HoldBack tooLarge(SIGXFSZ);
    call(context);
}

} // namespace BSS::HAL
