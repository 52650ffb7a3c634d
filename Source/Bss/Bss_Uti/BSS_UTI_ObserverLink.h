// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What ties subjects to an observer and outlives it. For BSS_UTI_Subject.cpp and BSS_UTI_Observer.cpp only.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

namespace BSS::UTI {

class ObserverC;

struct ObserverLinkT
{
    TSK::MutexC lock;               ///< held while the observer is told; recursive, so it may end itself
    ObserverC* pObserver = nullptr; ///< null once it is gone; guarded by the lock
};

} // namespace BSS::UTI
