// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Bytes that a parser reads, from a file or from memory: parsers know this interface only, so that tests and fuzzers
// can feed them without files. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Tool {

class InputI
{
public:
    virtual ~InputI() = default;

    /// Reads the next bytes: `nBytes`, or as many as are left. ToolErrorC with s_iFailed when the system fails.
    virtual std::size_t Read(void* pDestination, std::size_t nBytes) = 0;

    /// Goes to an offset from the start; beyond the end nothing is left. ToolErrorC with s_iFailed when the system fails.
    virtual void Seek(std::uint64_t ullOffset) = 0;

    /// Size in bytes when the input was opened.
    virtual std::uint64_t GetSize() const = 0;

    /// What messages call the input.
    virtual const std::string& GetName() const = 0;
};

/// A file. ToolErrorC with s_iFailed when there is no readable regular file of that name.
std::unique_ptr<InputI> OpenInput(const std::string& path);

/// Bytes in memory, which must outlive the input.
std::unique_ptr<InputI> MemoryInput(const std::string& name, std::string_view bytes);

} // namespace Tool
