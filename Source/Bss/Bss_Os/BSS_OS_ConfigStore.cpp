// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The platform's store has no state, so one object of constant initialisation serves the whole process.
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"

namespace BSS::OS {

namespace {

class PlatformConfigStoreC final : public ConfigStoreI
{
public:
    ResultCodeT Read(const std::wstring& key, const std::wstring& name, std::uint32_t& value) const override
    {
        return HAL::ReadConfigValue(key, name, value) ? RC_OK : RC_FAILED;
    }

    ResultCodeT Write(const std::wstring& key, const std::wstring& name, std::uint32_t value) override
    {
        return HAL::WriteConfigValue(key, name, value) ? RC_OK : RC_FAILED;
    }
};

} // namespace

ConfigStoreI::~ConfigStoreI() = default;

ConfigStoreI& PlatformConfigStore() noexcept
{
    static PlatformConfigStoreC store;
    return store;
}

} // namespace BSS::OS
