// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the framework's files live. Asks the platform once and remembers the answer; a host or a test can
// name another place. Safe from any thread.
#pragma once

#include <string>

namespace BSS::OS {

/// The directory of the log files; empty when there is none. Found, and made, when it is first asked for.
std::wstring LogDirectory();

/// Names the directory of the log files. It is made when the first line is written. Empty: back to the
/// platform's own choice, which is looked up anew.
void SetLogDirectory(const std::wstring& directory);

/// Makes the map without looking anything up. An object whose constructor calls this may use the map in its
/// destructor, however late that is.
void PreparePathMap();

} // namespace BSS::OS
