// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The values the framework itself keeps under "Configuration" in the configuration store. Knows nothing of
// who uses them. Safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>

namespace BSS::OS {

class ConfigStoreI;

/// Whether "ASSERTEnabled" is there and is not zero.
bool ReadAssertEnabled(const ConfigStoreI& store);

/// Stores "ASSERTEnabled" as 1 or 0. RC_FAILED when a key cannot be opened or the write fails.
[[nodiscard]] ResultCodeT WriteAssertEnabled(ConfigStoreI& store, bool enabled);

/// The size limit of the two named log files in bytes: "ErrorLogSize", which counts KiB. `defaultBytes` when
/// the value cannot be read. A stored 0 gives 0, which means no limit.
std::uint64_t ReadErrorLogLimitBytes(const ConfigStoreI& store, std::uint64_t defaultBytes);

} // namespace BSS::OS
