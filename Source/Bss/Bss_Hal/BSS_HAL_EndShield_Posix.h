// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Puts off the forced end of the calling thread while it holds what the rest of the process cannot do
// without. A thread that was to be ended meanwhile ends when its last shield goes. For the platform layer
// only.
#pragma once

namespace BSS::HAL {

class EndShieldC
{
public:
    EndShieldC() noexcept;
    ~EndShieldC();
    EndShieldC(const EndShieldC&) = delete;
    EndShieldC& operator=(const EndShieldC&) = delete;
};

/// Takes the calling thread, which is about to be ended, out of every list of waiting threads. Called inside
/// a signal handler; the thread holds no shield.
void AbandonWait() noexcept;

} // namespace BSS::HAL
