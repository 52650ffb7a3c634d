// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The whole of the user's registry is replaced, for this process alone, by an empty key.
#include "Support/Environment.h"

#include <stdexcept>
#include <stdlib.h>
#include <vector>
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

// The keys of those that live, the innermost last.
std::vector<std::wstring> s_keys;

bool Replace(const std::wstring& key)
{
    const HKEY root = MakeKey(HKEY_CURRENT_USER, key);
    const LSTATUS replaced = RegOverridePredefKey(HKEY_CURRENT_USER, root);
    RegCloseKey(root);
    return replaced == ERROR_SUCCESS;
}

} // namespace

PrivateConfiguration::PrivateConfiguration(const std::string&)
    : m_key(LR"(Software\ScanReader tests )" + std::to_wstring(GetCurrentProcessId()) + L" " +
            std::to_wstring(s_keys.size()))
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    // The library never makes this key itself.
    RegCloseKey(MakeKey(HKEY_CURRENT_USER, m_key + LR"(\Software\ScanReader\Configuration)"));
    if (!Replace(m_key)) throw std::runtime_error("registry of the tests");
    s_keys.push_back(m_key);
}

PrivateConfiguration::~PrivateConfiguration()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
    s_keys.pop_back();
    if (!s_keys.empty()) Replace(s_keys.back());
}

} // namespace Support
