// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Small files as whole texts, and where this test run keeps its log.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Environment.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Support {

/// A path, given as the library's users give it, as the standard library's streams want it.
inline std::filesystem::path StandardPath(const std::string& path)
{
    return BSS::HAL::FilesystemPath(BSS::HAL::WidePath(path)).native();
}

/// The bytes of a file; empty when there is none.
inline std::string ReadAll(const std::string& path)
{
    std::ifstream file(StandardPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteAll(const std::string& path, const std::string& bytes)
{
    std::ofstream file(StandardPath(path), std::ios::binary);
    file << bytes;
}

/// The directory that SCANREADER_LOG_DIR names.
inline std::string LogDirectory()
{
    return GetEnvironment("SCANREADER_LOG_DIR").value_or("");
}

} // namespace Support
