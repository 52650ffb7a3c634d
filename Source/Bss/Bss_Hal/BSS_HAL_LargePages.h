// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory that is going to be used from end to end, straight from the system. Mapping it page by page, as it
// is touched, can take longer than all that is done with it, so it is mapped as one large page where the
// system has such; and what is given back is given back at once, so that the next one is memory that was in
// use a moment ago. Any thread.
#pragma once

#include <cstddef>

namespace BSS::HAL {

inline constexpr std::size_t s_nLargePageBytes = std::size_t{2} << 20;
inline constexpr std::size_t s_nLargePageAlignment = std::size_t{64} << 10;

/// s_nLargePageBytes of memory, all zero, at a multiple of s_nLargePageAlignment. Null when there is no more. To be given
/// back with GiveLargePageBack.
void* TakeLargePage() noexcept;

/// Null is allowed.
void GiveLargePageBack(void* pMemory) noexcept;

} // namespace BSS::HAL
