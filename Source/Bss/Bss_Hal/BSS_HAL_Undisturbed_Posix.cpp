// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A thread that is cancelled unwinds by something that is no exception: where nothing may be thrown, or
// everything is caught, that ends the process.
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"

#include <pthread.h>

namespace BSS::HAL {

NoCancellation::NoCancellation() noexcept
{
    static_cast<void>(::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_state));
}

NoCancellation::~NoCancellation()
{
    if (!m_ended) static_cast<void>(::pthread_setcancelstate(m_state, &m_state));
}

void NoCancellation::End()
{
    m_ended = true;
    static_cast<void>(::pthread_setcancelstate(m_state, &m_state));
}

} // namespace BSS::HAL
