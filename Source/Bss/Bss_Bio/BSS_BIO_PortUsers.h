// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Who stands at the two sides of a port. Called on the port's thread, one call at a time for each side; a
// call may write to the port, detach, and close it. What it throws is the port's to log.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_PortEvents.h"

#include <cstddef>
#include <cstdint>

namespace BSS::BIO {

class PortWriterI
{
public:
    /// From ONLINE to OFFLINE there is something to write to.
    virtual void onPortEvent(PortEvent event, PortReason reason) = 0;

protected:
    ~PortWriterI() = default;
};

class PortReaderI
{
public:
    virtual void onPortEvent(PortEvent event, PortReason reason) = 0;

    /// What has arrived, at least one byte. Valid during the call only.
    virtual void onData(const std::uint8_t* bytes, std::size_t count) = 0;

protected:
    ~PortReaderI() = default;
};

} // namespace BSS::BIO
