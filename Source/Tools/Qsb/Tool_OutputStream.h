// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes a file in large pieces, and has the device begin while more is made: the file must be on disk before
// it is given its name, and by then most of it is. ToolErrorC with s_iFailed when the system does not take
// them. One thread at a time.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace Tool {

class OutputFileC;

class OutputStreamC
{
public:
    /// Makes the temporary file of `file`.
    explicit OutputStreamC(const OutputFileC& file);

    /// Text or bytes to be written: append to it, then call Written.
    std::string& Buffer() noexcept { return m_strBuffer; }

    /// Writes the buffer when it has become large.
    void Written();

    /// Writes what is left and closes the file, which must be done before it is committed.
    void Close();

private:
    void Write(std::size_t nBytes);
    [[noreturn]] void Fail() const;

    std::string m_strTarget;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_pStream;
    std::string m_strBuffer;
    std::uint64_t m_ullWritten = 0;
    std::uint64_t m_ullStarted = 0; ///< bytes that the system was asked to bring to the device
};

} // namespace Tool
