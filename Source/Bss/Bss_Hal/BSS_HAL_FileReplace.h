// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Putting a finished file in the place of another in one step: write beside the target, flush, rename, flush
// the directory. Whoever looks at the target sees the old file or the new one, whole. Knows nothing of
// contents. Throws nothing but std::bad_alloc. Safe from any thread; two replacers of one target end with one
// of the two files.
#pragma once

#include <string>

namespace BSS::HAL {

enum class RenameResult
{
    Done,   ///< the target is the new file
    Exists, ///< there is a target already, and it was not to be replaced
    Failed, ///< the system refused; both names are as they were
};

/// A name in the target's own directory that no file bears at the moment and that no other call, in this
/// process or another living one, is given. The file is not made.
std::wstring TemporaryNameBeside(const std::wstring& target);

/// Renames a file, replacing what bears the new name. A symbolic link there is replaced, not followed.
[[nodiscard]] RenameResult RenameOver(const std::wstring& from, const std::wstring& to);

/// Renames a file unless the new name is taken. Two processes that try at once: one of them gets Exists.
[[nodiscard]] RenameResult RenameNew(const std::wstring& from, const std::wstring& to);

/// Makes a rename in the directory of `path` survive a loss of power.
[[nodiscard]] bool SyncDirectoryOf(const std::wstring& path);

/// Removes a file. True when it is gone, also when it was not there.
[[nodiscard]] bool RemoveFile(const std::wstring& path);

} // namespace BSS::HAL
