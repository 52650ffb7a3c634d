// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Each key is opened below the root and closed again: nothing is held between calls.
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

namespace BSS::HAL {

namespace {

class RegistryKey
{
public:
    RegistryKey(HKEY parent, const std::wstring& name, REGSAM access)
    {
        if (RegOpenKeyExW(parent, name.c_str(), 0, access, &m_key) != ERROR_SUCCESS) m_key = nullptr;
    }
    ~RegistryKey()
    {
        if (m_key != nullptr) RegCloseKey(m_key);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY Get() const noexcept { return m_key; }

private:
    HKEY m_key = nullptr;
};

// The registry would take an empty name for the key itself or its unnamed value, and cut a name at a null character.
bool IsUnusable(const std::wstring& name)
{
    return name.empty() || name.find(L'\0') != std::wstring::npos;
}

constexpr wchar_t ROOT[] = LR"(Software\ScanReader)";

} // namespace

bool ReadConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t& value)
{
    if (IsUnusable(key) || IsUnusable(name)) return false;
    const RegistryKey root(HKEY_CURRENT_USER, ROOT, KEY_READ);
    if (root.Get() == nullptr) return false;
    const RegistryKey opened(root.Get(), key, KEY_READ);
    if (opened.Get() == nullptr) return false;
    DWORD type = 0;
    DWORD stored = 0;
    DWORD size = sizeof stored;
    auto* const bytes = reinterpret_cast<BYTE*>(&stored);
    if (RegQueryValueExW(opened.Get(), name.c_str(), nullptr, &type, bytes, &size) != ERROR_SUCCESS)
        return false;
    if (type != REG_DWORD || size != sizeof stored) return false;
    value = stored;
    return true;
}

bool WriteConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t value)
{
    if (IsUnusable(key) || IsUnusable(name)) return false;
    const RegistryKey root(HKEY_CURRENT_USER, ROOT, KEY_READ | KEY_WRITE);
    if (root.Get() == nullptr) return false;
    const RegistryKey opened(root.Get(), key, KEY_READ | KEY_WRITE);
    if (opened.Get() == nullptr) return false;
    const DWORD stored = value;
    const auto* const bytes = reinterpret_cast<const BYTE*>(&stored);
    return RegSetValueExW(opened.Get(), name.c_str(), 0, REG_DWORD, bytes, sizeof stored) == ERROR_SUCCESS;
}

} // namespace BSS::HAL
