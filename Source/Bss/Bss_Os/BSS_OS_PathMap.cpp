// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

namespace BSS::OS {

namespace {

struct PathMapT
{
    TSK::MutexC lock;
    std::wstring logDirectory;
};

PathMapT& Map()
{
    static PathMapT map;
    return map;
}

} // namespace

std::wstring LogDirectory()
{
    PathMapT& map = Map();
    const TSK::GuardC guard(map.lock);
    if (map.logDirectory.empty()) map.logDirectory = HAL::UserLogDirectory();
    return map.logDirectory;
}

void SetLogDirectory(const std::wstring& directory)
{
    PathMapT& map = Map();
    const TSK::GuardC guard(map.lock);
    map.logDirectory = directory;
}

void PreparePathMap()
{
    static_cast<void>(Map());
}

} // namespace BSS::OS
