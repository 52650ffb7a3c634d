// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Something that keeps logs of its own beside the manager's and wants to be flushed with them.
#pragma once

namespace BSS::DBG {

class SubLogManagerC
{
public:
    virtual ~SubLogManagerC();

    /// Puts everything logged so far on the device. False when that fails. Called from the thread that
    /// flushes the manager; never after the manager has let go of this object.
    virtual bool flushLogs() = 0;

protected:
    SubLogManagerC() = default;
    SubLogManagerC(const SubLogManagerC&) = default;
    SubLogManagerC& operator=(const SubLogManagerC&) = default;
};

} // namespace BSS::DBG
