// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A private folder for the files of one test, removed with everything in it, and files with holes.
#pragma once

#include "Support/QsbBytes.h"
#include "Support/TemporaryDirectory.h"

#include <cstdint>
#include <string>

namespace Support {

class ScanFolder
{
public:
    /// Full path of `name` in the folder.
    std::string Path(const std::string& name) const { return m_directory.Narrow(name); }

    /// Writes a file and returns its full path.
    std::string Write(const std::string& name, const BytesT& bytes) const;
    std::string Write(const std::string& name, const QsbBytes& file) const { return Write(name, file.Get()); }

private:
    TemporaryDirectory m_directory;
};

/// All bytes of a file.
BytesT ReadFile(const std::string& path);

std::uint64_t FileSize(const std::string& path);

/// Replaces bytes of an existing file; what lies between its end and `offset` becomes a hole.
void WriteAt(const std::string& path, std::uint64_t offset, const BytesT& bytes);

/// Sets the size of an existing file; what is added is a hole. False when the file system has no files that
/// large.
[[nodiscard]] bool Resize(const std::string& path, std::uint64_t size);

} // namespace Support
