// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a port tells of its link, to its reader, its writer and its observers. The codes are those with which
// a port's subject notifies; what goes with them is a PortEventC.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"

#include <cstdint>

namespace BSS::BIO {

enum PortEvent : std::uint32_t
{
    OFFLINE = 1,      ///< nothing can be read or written
    GOING_ONLINE = 2, ///< the port tries; with reason CONNECT_FAILED it has tried in vain
    ONLINE = 3
};

/// Why. The receive time-out's number is fixed; the others do not collide with it.
enum class PortReason : std::uint32_t
{
    NONE = 0,
    CLOSED_BY_PEER = 1,
    CLOSED_HERE = 2,
    CONNECT_FAILED = 3,
    RECEIVE_TIMEOUT = 4
};

class PortEventC final : public UTI::SharedObjectC
{
public:
    PortEventC(PortReason reason, ResultCodeT rc) noexcept : m_reason(reason), m_rc(rc) {}
    PortReason getReason() const noexcept { return m_reason; }

    /// The result code that led to it.
    ResultCodeT getResultCode() const noexcept { return m_rc; }

private:
    const PortReason m_reason;
    const ResultCodeT m_rc;
};

} // namespace BSS::BIO
