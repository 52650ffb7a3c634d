// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Paths as narrow text, as wide text and as file-system paths, turned into one another without loss and
// whatever the locale. On Linux a path is bytes: valid UTF-8 becomes characters, and each byte that is not
// part of valid UTF-8 travels through wide text as the lone surrogate 0xDC00 + byte and is turned back into
// that byte, so every file that exists can be named. On Windows narrow text is UTF-8 when it is valid UTF-8
// and otherwise in the active code page; wide text is the system's own. Throws nothing but std::bad_alloc.
// Safe from any thread.
#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <string>

namespace BSS::HAL {

/// Wide text of a path given as narrow text.
std::wstring WidePath(const std::string& narrow);

/// Narrow text of a path: the exact bytes on Linux, UTF-8 on Windows. Inverse of WidePath for valid UTF-8
/// and, on Linux, for any bytes.
std::string NarrowPath(const std::wstring& wide);

/// File-system path of a path given as wide text; on Windows of what LongPath makes of it.
boost::filesystem::path FilesystemPath(const std::wstring& wide);

/// Wide text of a file-system path. Inverse of FilesystemPath but for the long form, which stays.
std::wstring WidePathOf(const boost::filesystem::path& path);

/// Path of `name` inside `directory`, with the system's separator between them.
std::wstring JoinPath(const std::wstring& directory, const std::wstring& name);

/// What the system's open call is given: on Windows with the prefix that lifts the limit of 260 characters
/// from an absolute path, on Linux unchanged. `nMore` characters may still be put behind what is returned.
std::wstring LongPath(const std::wstring& wide, std::size_t nMore = 0);

/// Whether the system takes the name for a device that lies in no folder, as it does with NUL on Windows,
/// where the file system nevertheless calls it a file. Never on Linux, where devices are entries of folders
/// and known as what they are.
bool NamesDevice(const std::wstring& wide);

} // namespace BSS::HAL
