// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The user's own application data, which the system already keeps from other users.
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

bool IsAbsolute(const std::wstring& path)
{
    const bool drive = path.size() >= 3 && path[1] == L':' && (path[2] == L'\\' || path[2] == L'/');
    return drive || path.rfind(LR"(\\)", 0) == 0;
}

std::wstring AbsoluteFromEnvironment(const wchar_t* name)
{
    const DWORD needed = GetEnvironmentVariableW(name, nullptr, 0);
    if (needed == 0) return {};
    std::wstring value(needed, L'\0');
    const DWORD length = GetEnvironmentVariableW(name, value.data(), needed);
    if (length == 0 || length >= needed) return {};
    value.resize(length);
    return IsAbsolute(value) ? value : std::wstring();
}

std::wstring TemporaryDirectory()
{
    wchar_t path[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    return length == 0 || length > MAX_PATH ? std::wstring() : std::wstring(path, length);
}

bool IsDirectory(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace

std::wstring UserLogDirectory()
{
    std::wstring directory = AbsoluteFromEnvironment(L"SCANREADER_LOG_DIR");
    const bool wanted = !directory.empty();
    if (!wanted) {
        std::wstring base = AbsoluteFromEnvironment(L"LOCALAPPDATA");
        if (base.empty()) base = TemporaryDirectory();
        if (base.empty()) return {};
        directory = JoinPath(base, LR"(ScanReader\Log)");
    }
    const bool made = MakePrivateDirectory(directory);
    return made || wanted ? directory : std::wstring();
}

std::wstring UserConfigDirectory()
{
    const std::wstring wanted = AbsoluteFromEnvironment(L"SCANREADER_CONFIG_DIR");
    if (!wanted.empty()) return wanted;
    const std::wstring base = AbsoluteFromEnvironment(L"LOCALAPPDATA");
    return base.empty() ? std::wstring() : JoinPath(base, L"ScanReader");
}

bool MakePrivateDirectory(const std::wstring& path)
{
    // Begins behind the drive or the server, which cannot be made.
    for (std::size_t end = path.find_first_of(LR"(\/)", 3); end != std::wstring::npos;
         end = path.find_first_of(LR"(\/)", end + 1)) {
        CreateDirectoryW(LongPath(path.substr(0, end)).c_str(), nullptr);
    }
    CreateDirectoryW(LongPath(path).c_str(), nullptr);
    return IsDirectory(path);
}

} // namespace BSS::HAL
