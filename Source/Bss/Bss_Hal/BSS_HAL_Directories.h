// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the state and the configuration of one user live. Never the host's working directory: environment
// variables that do not hold an absolute path are ignored. The environment is read at each call; a program
// that changes it while threads run must keep them apart itself. Throws nothing but std::bad_alloc.
#pragma once

#include <string>

namespace BSS::HAL {

/// The directory for log files, made when it is missing (readable by the user alone): SCANREADER_LOG_DIR,
/// which is returned even when it cannot be made or written to; otherwise
///   - Linux: $XDG_STATE_HOME/scanreader/log, else ~/.local/state/scanreader/log; when that cannot be written
///     to, a private directory of this user under $TMPDIR or /tmp;
///   - Windows: %LOCALAPPDATA%\ScanReader\Log, else ScanReader\Log under the temporary directory.
/// Empty when there is none.
std::wstring UserLogDirectory();

/// The directory for configuration, which may not exist yet: SCANREADER_CONFIG_DIR, else
///   - Linux: $XDG_CONFIG_HOME/scanreader, else ~/.config/scanreader;
///   - Windows: %LOCALAPPDATA%\ScanReader.
/// Empty when there is none.
std::wstring UserConfigDirectory();

/// Makes a directory and those above it, readable by the user alone; existing ones are left as they are. On Windows
/// they inherit who may read them from the directory above, which is the user's own below the usual places. True
/// when the directory is there afterwards.
bool MakePrivateDirectory(const std::wstring& path);

} // namespace BSS::HAL
