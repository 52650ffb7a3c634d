// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory that is going to be used from end to end. Mapping it page by page, as it is touched, can take longer
// than all that is done with it; systems that have larger pages can be told. Any thread.
#pragma once

#include <cstddef>

namespace BSS::HAL {

/// Size and alignment of memory that AdviseLargePages is of use for.
inline constexpr std::size_t s_nLargePageBytes = std::size_t{2} << 20;

/// Tells the system that all of the `nBytes` at `pMemory` will be used soon. A hint, nothing more: no byte
/// changes.
void AdviseLargePages(void* pMemory, std::size_t nBytes) noexcept;

} // namespace BSS::HAL
