// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include "Bss/Bss_Os/BSS_OS_PathMapCommonWinPC.h"

namespace BSS::OS {

namespace {

PathMapCommonWinPC& Map()
{
    static PathMapCommonWinPC map;
    return map;
}

} // namespace

PathMapI& GetPathMap()
{
    return Map();
}

std::wstring LogDirectory()
{
    return Map().PathOf(PathKind::Log);
}

std::uint32_t LogDirectoryVersion()
{
    return Map().Version();
}

void SetLogDirectory(const std::wstring& directory)
{
    static_cast<void>(Map().SetPath(PathKind::Log, directory.c_str()));
}

void PreparePathMap()
{
    static_cast<void>(Map());
}

} // namespace BSS::OS
