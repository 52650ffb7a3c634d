// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Small files as whole texts, and where this test run keeps its log.
#pragma once

#include "Support/Environment.h"

#include <fstream>
#include <iterator>
#include <string>

namespace Support {

/// The bytes of a file; empty when there is none.
inline std::string ReadAll(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteAll(const std::string& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file << bytes;
}

/// The directory that SCANREADER_LOG_DIR names.
inline std::string LogDirectory()
{
    return GetEnvironment("SCANREADER_LOG_DIR").value_or("");
}

} // namespace Support
