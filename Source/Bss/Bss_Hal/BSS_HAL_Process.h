// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a process can tell of itself.
#pragma once

#include <cstdint>

namespace BSS::HAL {

/// Changes in the child when the process forks, so that buffers and files which parent and child would both
/// use can be told. One load. Always 0 where processes do not fork.
std::uint32_t ForkGeneration() noexcept;

} // namespace BSS::HAL
