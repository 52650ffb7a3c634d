// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The names of log files: what a consumer's name becomes as a file name, and how a full file becomes an older
// one. Safe from any thread. Throws std::bad_alloc only.
#pragma once

#include <string>

namespace BSS::DBG {

/// The file name of the consumer of that name: the name and ".txt". Characters that a file name cannot hold,
/// or that would lead out of the directory, are written as "%2F"; so are the percent sign itself, a dot at
/// the beginning, the first letter of names that Windows keeps for devices, and a dot with only a number
/// behind it, which would name an older file of another consumer. Different names have different files,
/// except that a long name is cut and ends in a checksum, and that names which differ in case share a file
/// where the file system makes no difference. The names of files that are given otherwise, "ErrorLog.txt" and
/// "LoaderLog.txt", are also those of the consumers "ErrorLog" and "LoaderLog", which share them.
std::wstring LogFileNameOf(const std::string& consumerName);

/// The name of an older file: "dir/a.txt" and 2 make "dir/a.2.txt".
std::wstring OlderLogFile(const std::wstring& path, unsigned number);

/// Renames the file to the first of its older files and each of those to the next; the last one, and those
/// beyond it, go. With `nOlderFiles` 0 the file itself goes. False when the file is where it was.
[[nodiscard]] bool RotateLogFiles(const std::wstring& path, unsigned nOlderFiles);

} // namespace BSS::DBG
