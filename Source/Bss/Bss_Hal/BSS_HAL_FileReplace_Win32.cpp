// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>

namespace BSS::HAL {

namespace {

constinit std::atomic<unsigned> s_counter = 0;

std::wstring DirectoryOf(const std::wstring& path)
{
    const std::size_t separator = path.find_last_of(LR"(\/:)");
    return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator + 1);
}

// Write-through makes the call return only when the new name is on the device.
RenameResult Move(const std::wstring& from, const std::wstring& to, DWORD flags)
{
    if (MoveFileExW(LongPath(from).c_str(), LongPath(to).c_str(), flags | MOVEFILE_WRITE_THROUGH)) {
        return RenameResult::Done;
    }
    const DWORD error = GetLastError();
    const bool exists = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    return exists ? RenameResult::Exists : RenameResult::Failed;
}

} // namespace

std::wstring TemporaryNameBeside(const std::wstring& target)
{
    const std::wstring stem =
        DirectoryOf(target) + L".scanreader-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (;;) {
        const std::wstring name = stem + std::to_wstring(s_counter.fetch_add(1)) + L".tmp";
        if (GetFileAttributesW(LongPath(name).c_str()) == INVALID_FILE_ATTRIBUTES) return name;
    }
}

RenameResult RenameOver(const std::wstring& from, const std::wstring& to)
{
    return Move(from, to, MOVEFILE_REPLACE_EXISTING);
}

RenameResult RenameNew(const std::wstring& from, const std::wstring& to)
{
    return Move(from, to, 0);
}

bool SyncDirectoryOf(const std::wstring&)
{
    return true; // every rename above has written through
}

bool RemoveFile(const std::wstring& path)
{
    if (DeleteFileW(LongPath(path).c_str())) return true;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

} // namespace BSS::HAL
