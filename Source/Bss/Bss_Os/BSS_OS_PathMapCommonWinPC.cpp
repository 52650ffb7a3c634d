// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_PathMapCommonWinPC.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <boost/filesystem/operations.hpp>
#include <mutex>
#include <string_view>

namespace BSS::OS {

namespace {

std::wstring Temporary()
{
    boost::system::error_code failed;
    const boost::filesystem::path path = boost::filesystem::temp_directory_path(failed);
    return failed ? std::wstring() : HAL::WidePathOf(path);
}

std::wstring PlatformsChoice(PathKind kind)
{
    switch (kind) {
    case PathKind::Log:
        return HAL::UserLogDirectory();
    case PathKind::Configuration:
        return HAL::UserConfigDirectory();
    case PathKind::Temporary:
        return Temporary();
    }
    return {};
}

bool IsEntryName(std::wstring_view name) noexcept
{
    return !name.empty() && name != L"." && name != L".." &&
           name.find_first_of(L"/\\") == std::wstring_view::npos;
}

} // namespace

PathMapCommonWinPC::PathMapCommonWinPC() = default;

PathMapCommonWinPC::~PathMapCommonWinPC() = default;

std::wstring PathMapCommonWinPC::PathOf(PathKind kind)
{
    const auto place = static_cast<std::size_t>(kind);
    if (place >= KINDS) return {};
    const std::lock_guard<TSK::MutexC> guard(m_lock);
    std::wstring& path = m_paths[place];
    if (path.empty()) path = PlatformsChoice(kind);
    return path;
}

ResultCodeT PathMapCommonWinPC::GetPath(PathKind kind, UTI::StringC& path)
{
    path = UTI::StringC(PathOf(kind));
    return path.IsEmpty() ? RC_FAILED : RC_OK;
}

ResultCodeT PathMapCommonWinPC::SetPath(PathKind kind, const wchar_t* path)
{
    const auto place = static_cast<std::size_t>(kind);
    if (path == nullptr || place >= KINDS) return RC_INVALID_ARGUMENT;
    const std::lock_guard<TSK::MutexC> guard(m_lock);
    m_paths[place] = path;
    m_nVersion.fetch_add(1, std::memory_order_release);
    return RC_OK;
}

ResultCodeT PathMapCommonWinPC::MakePath(PathKind kind)
{
    const std::wstring path = PathOf(kind);
    return !path.empty() && HAL::MakePrivateDirectory(path) ? RC_OK : RC_FAILED;
}

ResultCodeT PathMapCommonWinPC::FindEntry(PathKind kind, const wchar_t* name, UTI::StringC& path)
{
    path.Empty();
    if (name == nullptr || !IsEntryName(name)) return RC_INVALID_ARGUMENT;
    const std::wstring directory = PathOf(kind);
    if (directory.empty()) return RC_FAILED;
    const std::wstring entry = HAL::JoinPath(directory, name);
    boost::system::error_code ignored;
    if (!boost::filesystem::exists(boost::filesystem::symlink_status(HAL::FilesystemPath(entry), ignored)))
        return RC_NOT_FOUND;
    path = UTI::StringC(entry);
    return RC_ENTRY_FOUND;
}

} // namespace BSS::OS
