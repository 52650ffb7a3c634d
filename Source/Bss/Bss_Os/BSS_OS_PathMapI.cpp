// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_PathMapI.h"

namespace BSS::OS {

PathMapI::~PathMapI() = default;

} // namespace BSS::OS
