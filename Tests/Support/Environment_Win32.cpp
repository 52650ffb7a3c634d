// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The whole of the user's registry is replaced, for this process alone, by an empty key.
#include "Support/Environment.h"

#include <stdexcept>
#include <stdlib.h>
#include <windows.h>

namespace Support {

void SetEnvironment(const char* name, const std::string& value)
{
    static_cast<void>(_putenv_s(name, value.c_str()));
}

void ClearEnvironment(const char* name)
{
    static_cast<void>(_putenv_s(name, "")); // an empty value is no value here
}

std::optional<std::string> GetEnvironment(const char* name)
{
    const char* const value = getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

namespace {

HKEY MakeKey(HKEY parent, const std::wstring& name)
{
    HKEY key = nullptr;
    // Volatile: what a test leaves behind that does not return is gone with the session.
    if (RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        throw std::runtime_error("registry key of the tests");
    return key;
}

} // namespace

PrivateConfiguration::PrivateConfiguration(const std::string&)
    : m_key(LR"(Software\ScanReader tests )" + std::to_wstring(GetCurrentProcessId()))
{
    const HKEY root = MakeKey(HKEY_CURRENT_USER, m_key);
    // The library never makes this key itself.
    RegCloseKey(MakeKey(root, LR"(Software\ScanReader\Configuration)"));
    const LSTATUS replaced = RegOverridePredefKey(HKEY_CURRENT_USER, root);
    RegCloseKey(root);
    if (replaced != ERROR_SUCCESS) throw std::runtime_error("registry of the tests");
}

PrivateConfiguration::~PrivateConfiguration()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
}

} // namespace Support
