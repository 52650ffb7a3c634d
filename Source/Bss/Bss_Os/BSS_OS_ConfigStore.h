// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The configuration store: 32-bit values by key and name, below the application's own root. An interface, so
// that code which is given a store can be given another one than the platform's. Knows no particular value.
// Implementations are safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>
#include <string>

namespace BSS::OS {

class ConfigStoreI
{
public:
    /// RC_OK, or RC_FAILED with `value` unchanged when the root, the key or the value cannot be opened or
    /// read.
    [[nodiscard]] virtual ResultCodeT Read(const std::wstring& key, const std::wstring& name,
                                           std::uint32_t& value) const = 0;

    /// Stores a 4-byte number. RC_OK, or RC_FAILED when the root or the key cannot be opened or the write
    /// fails.
    [[nodiscard]] virtual ResultCodeT Write(const std::wstring& key, const std::wstring& name,
                                            std::uint32_t value) = 0;
    virtual ~ConfigStoreI();

protected:
    ConfigStoreI() = default;
    ConfigStoreI(const ConfigStoreI&) = default;
    ConfigStoreI& operator=(const ConfigStoreI&) = default;
};

/// The user's store on this platform: the registry on Windows, a file elsewhere.
ConfigStoreI& PlatformConfigStore() noexcept;

} // namespace BSS::OS
