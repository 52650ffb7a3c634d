// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A thread that is cancelled unwinds by something that is no exception: where nothing may be thrown, or
// everything is caught, that ends the process.
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"

#include <pthread.h>

namespace BSS::HAL {

namespace {

// Not noexcept, see End.
int SetState(int state)
{
    int before = PTHREAD_CANCEL_ENABLE;
    static_cast<void>(::pthread_setcancelstate(state, &before));
    return before;
}

} // namespace

NoCancellation::NoCancellation() noexcept : m_before(SetState(PTHREAD_CANCEL_DISABLE)) {}

NoCancellation::~NoCancellation()
{
    if (!m_ended) static_cast<void>(SetState(m_before));
}

void NoCancellation::End()
{
    m_ended = true;
    static_cast<void>(SetState(m_before));
}

} // namespace BSS::HAL
