// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A path is a string of bytes here; wide text is only the form in which it travels through the framework.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

namespace BSS::HAL {

std::wstring WidePath(const std::string& narrow)
{
    return WideFromUtf8(narrow);
}

std::string NarrowPath(const std::wstring& wide)
{
    return Utf8FromWide(wide);
}

boost::filesystem::path FilesystemPath(const std::wstring& wide)
{
    // Built from bytes: the library's own conversion from wide text depends on the locale and throws.
    return {Utf8FromWide(wide)};
}

std::wstring WidePathOf(const boost::filesystem::path& path)
{
    return WideFromUtf8(path.native());
}

std::wstring JoinPath(const std::wstring& directory, const std::wstring& name)
{
    if (directory.empty() || directory.back() == L'/') return directory + name;
    return directory + L'/' + name;
}

std::wstring LongPath(const std::wstring& wide, std::size_t)
{
    return wide;
}

bool NamesDevice(const std::wstring&)
{
    return false;
}

} // namespace BSS::HAL
