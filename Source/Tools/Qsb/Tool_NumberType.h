// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The number types that points of interchange files are made of, their names, and their bytes. Every value of
// every type is exactly a double, so values travel as doubles. A NaN stays a NaN; its payload may change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Tool {

enum class NumberTypeT : std::uint8_t
{
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Float,
    Double,
};

std::size_t SizeOf(NumberTypeT eType) noexcept;

constexpr bool IsFloating(NumberTypeT eType) noexcept
{
    return eType == NumberTypeT::Float || eType == NumberTypeT::Double;
}

/// Least and greatest value of an integer type.
double LeastOf(NumberTypeT eType) noexcept;
double GreatestOf(NumberTypeT eType) noexcept;

/// The name in reports and options: "int8", "uint8", ... "float", "double".
std::string_view NameOf(NumberTypeT eType) noexcept;
std::optional<NumberTypeT> TypeNamed(std::string_view name) noexcept;

/// The name in the raw form: "i8", "u8", "i16", "u16", "i32", "u32", "f32", "f64".
std::string_view ShortName(NumberTypeT eType) noexcept;
std::optional<NumberTypeT> TypeOfShortName(std::string_view name) noexcept;

/// The name in a PLY header: "char", "uchar", "short", "ushort", "int", "uint", "float", "double".
std::string_view PlyName(NumberTypeT eType) noexcept;

/// Knows the other set of names as well: "int8", "uint8", ... "float32", "float64".
std::optional<NumberTypeT> TypeOfPlyName(std::string_view name) noexcept;

/// Whether `eType` holds every value of `eOther` exactly.
bool HoldsAllOf(NumberTypeT eType, NumberTypeT eOther) noexcept;

/// Reads `nCount` numbers that lie `nStride` bytes apart, the first one at `pFirst`.
void LoadNumbers(NumberTypeT eType, bool bBigEndian, const char* pFirst, std::size_t nStride,
                 std::size_t nCount, double* pdValues) noexcept;

/// Writes `nCount` numbers, which the type must be able to hold, as little-endian bytes `nStride` bytes
/// apart.
void StoreNumbers(NumberTypeT eType, const double* pdValues, std::size_t nCount, char* pFirst,
                  std::size_t nStride) noexcept;

} // namespace Tool
