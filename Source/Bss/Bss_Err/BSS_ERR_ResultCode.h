// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The framework's result codes. A code is only ever compared with the names below: no severity or facility
// is decoded from its bits. Zero is success. Includes nothing of ours, so that every floor can use it.
#pragma once

#include <cstdint>

namespace BSS {

/// Result of an operation that can fail for reasons outside the program: RC_OK or one of the codes below.
using ResultCodeT = std::uint32_t;

inline constexpr ResultCodeT RC_OK = 0x00000000;

// General codes.
inline constexpr ResultCodeT RC_INVALID_ARGUMENT = 0x02000002; ///< a required pointer is null, a size is zero
inline constexpr ResultCodeT RC_OBJECT_MISSING = 0x02000004;   ///< a required object is not there
inline constexpr ResultCodeT RC_TIMED_OUT = 0x02000006;        ///< a wait ended without the awaited event
inline constexpr ResultCodeT RC_ENTRY_FOUND = 0x02000008;      ///< a directory search found an entry
inline constexpr ResultCodeT RC_BUFFER_BOUNDS = 0x02000009;  ///< serialisation would pass the end of a buffer
inline constexpr ResultCodeT RC_INVALID_SOCKET = 0x0200000A; ///< the socket handle is not valid
inline constexpr ResultCodeT RC_FAILED = 0x0200001A;         ///< general failure or refusal
inline constexpr ResultCodeT RC_NOT_FOUND = 0x0200001B;      ///< the file or object does not exist
inline constexpr ResultCodeT RC_BUFFER_TOO_SMALL = 0x0200001C; ///< the result was truncated
inline constexpr ResultCodeT RC_CLOSED = 0x0200001D;           ///< connection closed or socket not open
inline constexpr ResultCodeT RC_VALUE_REJECTED = 0x0200001E;   ///< a new value was not accepted

/// The type that every panic report carries, whatever type its caller passed.
inline constexpr ResultCodeT PANIC_TYPE = 0x01200001;

// System services.
inline constexpr ResultCodeT RC_WAIT_FAILED = 0x03101001;    ///< a wait without a time limit failed
inline constexpr ResultCodeT RC_SERVICE_FAILED = 0x03101002; ///< a call to the operating system failed
inline constexpr ResultCodeT RC_SERVICE_UNSPECIFIED =
    0x03101004; ///< system-service error made without a code

} // namespace BSS
