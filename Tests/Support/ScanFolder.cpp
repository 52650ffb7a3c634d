// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Files through the standard library's own streams, not the ones under test.
#include "Support/ScanFolder.h"

#include "Support/Files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Support {

namespace {

void Require(bool done, const std::string& path)
{
    if (!done) throw std::runtime_error("test file: " + path);
}

} // namespace

std::string ScanFolder::Write(const std::string& name, const BytesT& bytes) const
{
    const std::string path = Path(name);
    std::ofstream file(StandardPath(path), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    Require(file.good(), path);
    return path;
}

BytesT ReadFile(const std::string& path)
{
    std::ifstream file(StandardPath(path), std::ios::binary);
    Require(file.good(), path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::uint64_t FileSize(const std::string& path)
{
    return std::filesystem::file_size(StandardPath(path));
}

void WriteAt(const std::string& path, std::uint64_t offset, const BytesT& bytes)
{
    std::fstream file(StandardPath(path), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(offset));
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    Require(file.good(), path);
}

bool Resize(const std::string& path, std::uint64_t size)
{
    std::error_code error;
    std::filesystem::resize_file(StandardPath(path), size, error);
    return !error;
}

} // namespace Support
