// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One word, 0 or 1, that the kernel sleeps on.
#include "Bss/Bss_Hal/BSS_HAL_WakeEvent.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <linux/futex.h>
#include <new>
#include <sys/syscall.h>
#include <unistd.h>

namespace BSS::HAL {

struct WakeEvent
{
    std::atomic<std::uint32_t> signalled{0};
};

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t),
              "the kernel looks at the bare word");

namespace {

void Futex(WakeEvent* event, int operation, std::uint32_t value) noexcept
{
    const int saved = errno;
    static_cast<void>(
        ::syscall(SYS_futex, &event->signalled, operation | FUTEX_PRIVATE_FLAG, value, nullptr));
    errno = saved; // a lock leaves no trace in errno
}

} // namespace

WakeEvent* OpenWakeEvent() noexcept
{
    return TakeFault(FaultT::LockEvent) ? nullptr : new (std::nothrow) WakeEvent;
}

void SignalWakeEvent(WakeEvent* event) noexcept
{
    // Release pairs with the acquire in AwaitWakeEvent. An event already signalled has woken its thread
    // before.
    if (event->signalled.exchange(1, std::memory_order_release) == 0) Futex(event, FUTEX_WAKE, 1);
}

void AwaitWakeEvent(WakeEvent* event) noexcept
{
    // A signal that comes between the exchange and the wait makes the word differ, and the wait returns at
    // once.
    while (event->signalled.exchange(0, std::memory_order_acquire) == 0)
        Futex(event, FUTEX_WAIT, 0);
}

void CloseWakeEvent(WakeEvent* event) noexcept
{
    delete event;
}

} // namespace BSS::HAL
