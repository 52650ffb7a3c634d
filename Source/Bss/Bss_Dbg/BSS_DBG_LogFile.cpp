// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <memory>
#include <utility>

namespace BSS::DBG {

namespace {

struct CloseStream
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};
using StreamPtr = std::unique_ptr<std::FILE, CloseStream>;

std::wstring OlderName(const std::wstring& path)
{
    const std::size_t dot = path.rfind(L'.');
    const std::size_t separator = path.find_last_of(L"/\\");
    const bool extension = dot != std::wstring::npos && (separator == std::wstring::npos || dot > separator);
    return extension ? path.substr(0, dot) + L".1" + path.substr(dot) : path + L".1";
}

bool WriteAndClose(StreamPtr stream, std::string_view text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size();
    return std::fclose(stream.release()) == 0 && written;
}

} // namespace

DbgLogFileC::DbgLogFileC(std::wstring name, std::uint64_t limitBytes)
    : m_name(std::move(name)), m_limitBytes(limitBytes)
{}

bool DbgLogFileC::append(std::string_view text)
{
    const std::wstring directory = OS::LogDirectory();
    if (directory.empty()) return false;
    const std::wstring path = HAL::JoinPath(directory, m_name);
    if (m_limitBytes != 0 && text.size() > m_limitBytes) text = text.substr(0, m_limitBytes);
    if (!makeRoom(path, text.size())) return false;
    StreamPtr stream(HAL::OpenStream(path, "ab"));
    // The directory may be missing yet, or have been taken away.
    if (!stream && HAL::MakePrivateDirectory(directory)) stream.reset(HAL::OpenStream(path, "ab"));
    return stream && WriteAndClose(std::move(stream), text);
}

bool DbgLogFileC::flush()
{
    const std::wstring directory = OS::LogDirectory();
    const std::wstring path = HAL::JoinPath(directory, m_name);
    boost::system::error_code ignored;
    if (directory.empty() || !boost::filesystem::exists(HAL::FilesystemPath(path), ignored)) return true;
    const StreamPtr stream(HAL::OpenStream(path, "ab"));
    return stream && HAL::SyncStream(stream.get());
}

// True when `bytes` more fit, if need be after the file has become the older one.
bool DbgLogFileC::makeRoom(const std::wstring& path, std::uint64_t bytes) const
{
    if (m_limitBytes == 0) return true;
    StreamPtr stream(HAL::OpenStream(path, "rb"));
    std::uint64_t size = 0;
    if (!stream || !HAL::StreamSize(stream.get(), size) || size + bytes <= m_limitBytes) return true;
    stream.reset(); // not every system renames a file that is open
    return HAL::RenameOver(path, OlderName(path)) == HAL::RenameResult::Done;
}

} // namespace BSS::DBG
