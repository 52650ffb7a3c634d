// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The process's path map, and short ways to what is asked of it most. A host or a test can name other places.
// Safe from any thread.
#pragma once

#include <cstdint>
#include <string>

namespace BSS::OS {

class PathMapI;

/// The one map of the process.
PathMapI& GetPathMap();

/// The directory of the log files; empty when there is none. Found, and made, when it is first asked for.
std::wstring LogDirectory();

/// Changes whenever SetLogDirectory is called. Cheap.
std::uint32_t LogDirectoryVersion();

/// Names the directory of the log files. It is made when the first line is written. Empty: back to the
/// platform's own choice, which is looked up anew.
void SetLogDirectory(const std::wstring& directory);

/// Makes the map without looking anything up. An object whose constructor calls this may use the map in its
/// destructor, however late that is.
void PreparePathMap();

} // namespace BSS::OS
