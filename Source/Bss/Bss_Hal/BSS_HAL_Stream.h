// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// C streams on wide paths with 64-bit offsets. Reading and writing themselves are the C library's fread and
// fwrite; this adds what differs between platforms. Knows nothing of any file format. A stream belongs to one
// thread at a time; distinct streams are independent.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace BSS::HAL {

/// Opens a regular file with an fopen mode ("rb", "wb", "ab", "r+b", "w+b"). The caller closes it with
/// fclose; a child process does not inherit it. Null when it cannot be opened, when the path holds a null
/// character, and for anything that is not a regular file: a directory, a device or a pipe (opening a pipe
/// never waits for its other end).
std::FILE* OpenStream(const std::wstring& path, const char* mode) noexcept;

/// Moves to `offset` bytes from the start of the file. Positions beyond the end are allowed, positions that
/// the system cannot express (2^63 and above) fail.
[[nodiscard]] bool SeekStream(std::FILE* stream, std::uint64_t offset) noexcept;

/// Reads the current position.
[[nodiscard]] bool TellStream(std::FILE* stream, std::uint64_t& offset) noexcept;

/// Reads the size of the file on disk; bytes that are still in the stream's own buffer are not counted. The
/// position does not change.
[[nodiscard]] bool StreamSize(std::FILE* stream, std::uint64_t& size) noexcept;

/// Finds the first offset at or after `from` whose bytes the file system may have stored; all bytes from
/// `from` up to it are known to be zero. The end of the file counts as stored. Returns false when the file
/// system cannot tell. The position does not change.
[[nodiscard]] bool NextStoredOffset(std::FILE* stream, std::uint64_t from, std::uint64_t& next) noexcept;

/// Writes the stream's buffer and then everything of the file that the system still holds to the device.
[[nodiscard]] bool SyncStream(std::FILE* stream) noexcept;

/// Asks the system to begin writing these bytes of the file, which were handed to it, to the device, and does
/// not wait for that: a SyncStream later on finds less to do. A hint, nothing more.
void StartWriteback(std::FILE* stream, std::uint64_t offset, std::uint64_t bytes) noexcept;

/// Tells the system that the file will be read from front to back, so that it reads ahead. A hint, nothing
/// more.
void AdviseSequential(std::FILE* stream) noexcept;

} // namespace BSS::HAL
