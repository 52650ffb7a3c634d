// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Both kinds of input.
#include "Tools/Qsb/Tool_Input.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>

namespace Tool {

namespace {

class FileInputC final : public InputI
{
public:
    explicit FileInputC(const std::string& path)
        : m_strPath(path), m_pStream(BSS::HAL::OpenStream(BSS::HAL::WidePath(path), "rb"), &std::fclose)
    {
        if (!m_pStream) throw ToolErrorC(s_iFailed, fmt::format("{}: cannot be opened for reading", path));
        if (!BSS::HAL::StreamSize(m_pStream.get(), m_ullSize)) Fail();
        BSS::HAL::AdviseSequential(m_pStream.get());
    }

    std::size_t Read(void* pDestination, std::size_t nBytes) override
    {
        const std::size_t nRead = std::fread(pDestination, 1, nBytes, m_pStream.get());
        if (nRead < nBytes && std::ferror(m_pStream.get()) != 0) Fail();
        return nRead;
    }

    void Seek(std::uint64_t ullOffset) override
    {
        if (!BSS::HAL::SeekStream(m_pStream.get(), ullOffset)) Fail();
    }

    std::uint64_t GetSize() const override { return m_ullSize; }
    const std::string& GetName() const override { return m_strPath; }

private:
    [[noreturn]] void Fail() const { throw ToolErrorC(s_iFailed, fmt::format("{}: reading failed", m_strPath)); }

    std::string m_strPath;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_pStream;
    std::uint64_t m_ullSize = 0;
};

class MemoryInputC final : public InputI
{
public:
    MemoryInputC(const std::string& name, std::string_view bytes) : m_strName(name), m_strBytes(bytes) {}

    std::size_t Read(void* pDestination, std::size_t nBytes) override
    {
        const std::size_t nRead = std::min(nBytes, m_strBytes.size() - m_nPosition);
        if (nRead != 0) std::memcpy(pDestination, m_strBytes.data() + m_nPosition, nRead);
        m_nPosition += nRead;
        return nRead;
    }

    void Seek(std::uint64_t ullOffset) override
    {
        m_nPosition = static_cast<std::size_t>(std::min<std::uint64_t>(ullOffset, m_strBytes.size()));
    }

    std::uint64_t GetSize() const override { return m_strBytes.size(); }
    const std::string& GetName() const override { return m_strName; }

private:
    std::string m_strName;
    std::string_view m_strBytes;
    std::size_t m_nPosition = 0;
};

} // namespace

std::unique_ptr<InputI> OpenInput(const std::string& path) { return std::make_unique<FileInputC>(path); }

std::unique_ptr<InputI> MemoryInput(const std::string& name, std::string_view bytes)
{
    return std::make_unique<MemoryInputC>(name, bytes);
}

} // namespace Tool
