// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// An event: set, reset, and waited for. It is what command tasks wait for beside their queue, and may travel
// inside a message. Not an interruption point. Safe from any thread; it must outlive every wait for it.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

namespace BSS::TSK {

class EventC
{
public:
    /// Throws SysServiceErrorC with RC_SERVICE_FAILED when the system has no event to give. On Windows
    /// processes share an event by its name; elsewhere a name has no meaning.
    explicit EventC(HAL::ResetMode mode = HAL::ResetMode::Auto, bool signalled = false,
                    const wchar_t* name = nullptr);
    virtual ~EventC();
    EventC(const EventC&) = delete;
    EventC& operator=(const EventC&) = delete;

    void set() noexcept { HAL::SetWaitEvent(m_handle); }
    void reset() noexcept { HAL::ResetWaitEvent(m_handle); }

    /// Releases those who wait at this moment, one of them for an auto-reset event.
    void pulse() noexcept { HAL::PulseWaitEvent(m_handle); }

    /// Waits that many milliseconds at most, without limit when negative. RC_OK; with a limit RC_TIMED_OUT,
    /// whatever ended the wait, and without one RC_WAIT_FAILED.
    [[nodiscard]] ResultCodeT wait(int timeoutMs) noexcept;

    HAL::WaitHandleT getHandle() const noexcept { return m_handle; }

private:
    const HAL::WaitHandleT m_handle;
};

} // namespace BSS::TSK
