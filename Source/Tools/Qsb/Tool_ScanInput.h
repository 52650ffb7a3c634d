// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The bytes that a scan is looked at through: a file, or memory. Offsets are 64-bit and any of them may be
// asked for; the size is that at the time of opening, whatever happens to the file since. An input belongs to
// one thread. Knows nothing of what the bytes mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace Tool {

class ScanInputI
{
public:
    virtual ~ScanInputI() = default;

    virtual std::uint64_t GetSize() const = 0;

    /// Copies up to `nBytes` that begin at `ullOffset`; fewer only where the input ends. ToolErrorC with
    /// s_iFailed when the system cannot read.
    virtual std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes) = 0;

    /// As BSS::HAL::NextStoredOffset: all bytes from `ullFrom` up to `ullNext` are zero. False when that is
    /// unknown.
    virtual bool NextStoredOffset(std::uint64_t ullFrom, std::uint64_t& ullNext) = 0;
};

class FileInputC final : public ScanInputI
{
public:
    /// ToolErrorC with s_iFailed when there is no regular file of that name that can be read.
    explicit FileInputC(const std::string& path);

    std::uint64_t GetSize() const override { return m_ullSize; }
    std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes) override;
    bool NextStoredOffset(std::uint64_t ullFrom, std::uint64_t& ullNext) override;

private:
    std::string m_strPath;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_pStream;
    std::uint64_t m_ullSize = 0;
};

class MemoryInputC final : public ScanInputI
{
public:
    /// The bytes are not copied and must stay.
    MemoryInputC(const void* pBytes, std::size_t nBytes) noexcept
        : m_pBytes(static_cast<const char*>(pBytes)), m_nBytes(nBytes)
    {}

    std::uint64_t GetSize() const override { return m_nBytes; }
    std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes) override;
    bool NextStoredOffset(std::uint64_t, std::uint64_t&) override { return false; }

private:
    const char* m_pBytes;
    std::size_t m_nBytes;
};

/// Reads an input through a window, which starts small after a jump and grows while the reading goes on
/// without one: inputs of large blocks are not read through, inputs of small ones not asked for in small
/// pieces.
class InputWindowC
{
public:
    explicit InputWindowC(ScanInputI& input);

    /// As ScanInputI::ReadAt.
    std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes);

private:
    bool MoveTo(std::uint64_t ullOffset);

    ScanInputI& m_rInput;
    std::unique_ptr<char[]> m_pBytes;
    std::uint64_t m_ullStart = 0;
    std::size_t m_nFill = 0;
    std::size_t m_nWanted;
};

} // namespace Tool
