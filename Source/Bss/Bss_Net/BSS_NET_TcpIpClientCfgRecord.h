// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The configuration of a TCP/IP client as a stored record.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_BinaryPersistency.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfg.h"

namespace BSS::NET {

/// Stores what LoadClientCfg takes: RC_OK; otherwise its answer for such a record, and nothing is stored. A
/// client may have an auto-connect mode that is not known; a record may not. Throws BIO::OverflowExceptionC
/// when it does not fit.
[[nodiscard]] ResultCodeT StoreClientCfg(BIO::BinaryPersistencyC& persistency,
                                         const NetTcpIpClientCfgT& config);

/// Loads it from wherever it comes: RC_OK; RC_BUFFER_BOUNDS when the record ends too early; RC_OBJECT_MISSING
/// when the reader has no buffer; RC_VALUE_REJECTED for a version or an auto-connect mode that is not known;
/// RC_INVALID_ARGUMENT for a name or a port that cannot be. `config` is unchanged unless it is RC_OK. What
/// follows the record is not looked at.
[[nodiscard]] ResultCodeT LoadClientCfg(BIO::BinaryPersistencyC& persistency, NetTcpIpClientCfgT& config);

} // namespace BSS::NET
