// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A handle of the operating system, owned, and closed with a look at the answer: a close that the system
// refuses means that somebody else has closed what was ours, or that we close what is not, and is reported by
// an assertion. Moving and closing are for one thread; Close() may come from several, one of which closes.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Hal/BSS_HAL_Handle.h"

#include <atomic>

namespace BSS::OS {

/// Takes the handle away and closes it. RC_OK, also when there was none; RC_FAILED and the assertion
/// `!"Failed closing handle!"` when the system refuses. The place holds no handle afterwards in any case.
ResultCodeT CloseHandleChecked(std::atomic<HAL::NativeHandleT>& handle);

class HandleC
{
public:
    HandleC() noexcept = default;
    explicit HandleC(HAL::NativeHandleT handle) noexcept : m_handle(handle) {}
    HandleC(HandleC&& other) noexcept : m_handle(other.Detach()) {}
    ~HandleC();
    HandleC(const HandleC&) = delete;
    HandleC& operator=(const HandleC&) = delete;

    HAL::NativeHandleT Get() const noexcept { return m_handle.load(); }

    /// See CloseHandleChecked.
    ResultCodeT Close() { return CloseHandleChecked(m_handle); }

    /// Gives the handle away unclosed.
    HAL::NativeHandleT Detach() noexcept { return m_handle.exchange(HAL::NO_HANDLE); }

private:
    std::atomic<HAL::NativeHandleT> m_handle{HAL::NO_HANDLE};
};

} // namespace BSS::OS
