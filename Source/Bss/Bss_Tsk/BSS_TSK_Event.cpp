// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"

#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"

namespace BSS::TSK {

EventC::EventC(HAL::ResetMode mode, bool signalled, const wchar_t* name)
    : m_handle(HAL::MakeWaitEvent(mode, signalled, name))
{
    if (m_handle == HAL::NO_WAIT_HANDLE) throw SysServiceErrorC("no event", RC_SERVICE_FAILED);
}

EventC::~EventC()
{
    HAL::CloseWaitHandle(m_handle);
}

ResultCodeT EventC::wait(int timeoutMs) noexcept
{
    const bool limited = timeoutMs >= 0;
    const std::uint32_t limitMs = limited ? static_cast<std::uint32_t>(timeoutMs) : HAL::WAIT_WITHOUT_LIMIT;
    if (HAL::WaitForOne(m_handle, limitMs)) return RC_OK;
    return limited ? RC_TIMED_OUT : RC_WAIT_FAILED;
}

} // namespace BSS::TSK
