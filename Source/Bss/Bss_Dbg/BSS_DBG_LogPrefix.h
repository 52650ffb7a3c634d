// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The prefix of a line that the calling thread writes. Everything that does not change within a
// second is made once per second and thread and kept in a slot of the thread; the rest is three digits and
// the level. Name and priority of the thread are those of a second ago at most, and what SetCurrentThreadName
// says is seen at once. Safe from any thread.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatOut.h"

namespace BSS::DBG {

/// Puts out what PrefixedLine puts before a text. Throws std::bad_alloc only.
void PutPrefix(UTI::FormatOutT<char>& out, PrefixKind kind, int level, const HAL::WallTime& now);

} // namespace BSS::DBG
