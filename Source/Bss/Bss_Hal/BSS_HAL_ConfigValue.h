// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// 32-bit configuration values of one user, by key and name, where the platform keeps such things:
//   - Linux: the file "scanreader.conf" in the configuration directory, with "[key]" lines and below each its
//     "name = number" lines, decimal or with 0x; '#' and ';' begin a comment line. Writing makes the file and
//     keeps every line that it does not change.
//   - Windows: the registry, HKEY_CURRENT_USER\Software\ScanReader\<key>. A key that does not exist is not
//     made: whoever installs the product makes it.
// Nothing is cached. Throws nothing but std::bad_alloc. Safe from any thread; of two processes that write at
// once one wins.
#pragma once

#include <cstdint>
#include <string>

namespace BSS::HAL {

/// False, and `value` unchanged, when the key or the value is not there or is not a 32-bit number.
[[nodiscard]] bool ReadConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t& value);

/// False, and nothing changed, when the key cannot be opened or the value cannot be written.
[[nodiscard]] bool WriteConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t value);

} // namespace BSS::HAL
