// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The one place where bytes of a file become numbers and back. Files are little-endian; addresses need no
// alignment. A number's bytes are copied, never converted, so NaNs keep their payload.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace SIO {

/// The number of type T whose little-endian bytes begin at `source`.
template<typename T>
T LoadLittleEndian(const void* source) noexcept
{
    static_assert(std::is_arithmetic_v<T>);
    std::array<std::byte, sizeof(T)> bytes;
    std::memcpy(bytes.data(), source, sizeof(T));
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
}

/// Writes the little-endian bytes of `value` to `destination`.
template<typename T>
void StoreLittleEndian(void* destination, T value) noexcept
{
    static_assert(std::is_arithmetic_v<T>);
    auto bytes = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes.begin(), bytes.end());
    std::memcpy(destination, bytes.data(), sizeof(T));
}

} // namespace SIO
