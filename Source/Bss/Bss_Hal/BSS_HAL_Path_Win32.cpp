// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A path is wide text here. Narrow text that is not UTF-8 comes from a program that knows only its code page.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

// From this length on the system wants the long form; directories lose another 12 characters to a file name.
constexpr std::size_t SHORT_PATH_LIMIT = 248;

std::wstring WideFromCodePage(const std::string& narrow)
{
    const int size = static_cast<int>(narrow.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, narrow.data(), size, nullptr, 0);
    if (needed <= 0) return WideFromUtf8(narrow);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, narrow.data(), size, wide.data(), needed);
    return wide;
}

std::wstring FullPath(const std::wstring& wide)
{
    const DWORD needed = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    if (needed == 0) return wide;
    std::wstring full(needed, L'\0');
    const DWORD length = GetFullPathNameW(wide.c_str(), needed, full.data(), nullptr);
    if (length == 0 || length >= needed) return wide;
    full.resize(length);
    return full;
}

bool BeginsWith(const std::wstring& text, const wchar_t* beginning)
{
    return text.rfind(beginning, 0) == 0;
}

// What has one is given to the system as it is.
bool HasPrefix(const std::wstring& path)
{
    return BeginsWith(path, LR"(\\?\)") || BeginsWith(path, LR"(\\.\)");
}

} // namespace

std::wstring WidePath(const std::string& narrow)
{
    return IsUtf8(narrow) ? WideFromUtf8(narrow) : WideFromCodePage(narrow);
}

std::string NarrowPath(const std::wstring& wide)
{
    return Utf8FromWide(wide);
}

boost::filesystem::path FilesystemPath(const std::wstring& wide)
{
    return {LongPath(wide)}; // the library that works on it does not lift the limit by itself
}

std::wstring WidePathOf(const boost::filesystem::path& path)
{
    return path.native();
}

std::wstring JoinPath(const std::wstring& directory, const std::wstring& name)
{
    if (directory.empty() || directory.back() == L'\\' || directory.back() == L'/') return directory + name;
    return directory + L'\\' + name;
}

std::wstring LongPath(const std::wstring& wide, std::size_t nMore)
{
    if (HasPrefix(wide)) return wide;
    // The long form is taken as it stands, so "..", "." and forward slashes are resolved before it is made.
    const std::wstring full = FullPath(wide);
    if (full.size() + nMore < SHORT_PATH_LIMIT) return wide;
    if (HasPrefix(full)) return full; // it was written with forward slashes
    if (BeginsWith(full, LR"(\\)")) return LR"(\\?\UNC)" + full.substr(1);
    return LR"(\\?\)" + full;
}

bool NamesDevice(const std::wstring& wide)
{
    return BeginsWith(FullPath(wide), LR"(\\.\)");
}

} // namespace BSS::HAL
