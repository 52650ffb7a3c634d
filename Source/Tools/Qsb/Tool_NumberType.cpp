// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One row per type, and one instance of the loops per type.
#include "Tools/Qsb/Tool_NumberType.h"

#include "Sio/Sio_LittleEndian.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Tool {

namespace {

struct TypeRowT
{
    std::size_t nBytes;
    std::string_view name;
    std::string_view shortName;
    std::string_view plyName;
    std::string_view plyOtherName;
    double dLeast;
    double dGreatest;
};

template<typename T>
constexpr TypeRowT Row(std::string_view name, std::string_view shortName, std::string_view plyName,
                       std::string_view plyOtherName)
{
    return {sizeof(T),
            name,
            shortName,
            plyName,
            plyOtherName,
            static_cast<double>(std::numeric_limits<T>::lowest()),
            static_cast<double>(std::numeric_limits<T>::max())};
}

// In the order of NumberTypeT.
constexpr std::array<TypeRowT, 8> s_aRows = {{
    Row<std::int8_t>("int8", "i8", "char", "int8"),
    Row<std::uint8_t>("uint8", "u8", "uchar", "uint8"),
    Row<std::int16_t>("int16", "i16", "short", "int16"),
    Row<std::uint16_t>("uint16", "u16", "ushort", "uint16"),
    Row<std::int32_t>("int32", "i32", "int", "int32"),
    Row<std::uint32_t>("uint32", "u32", "uint", "uint32"),
    Row<float>("float", "f32", "float", "float32"),
    Row<double>("double", "f64", "double", "float64"),
}};

constexpr const TypeRowT& RowOf(NumberTypeT eType) noexcept
{
    return s_aRows[static_cast<std::size_t>(eType)];
}

template<typename PredicateT>
std::optional<NumberTypeT> Find(PredicateT predicate) noexcept
{
    const auto found = std::find_if(s_aRows.begin(), s_aRows.end(), predicate);
    if (found == s_aRows.end()) return std::nullopt;
    return static_cast<NumberTypeT>(found - s_aRows.begin());
}

/// Calls `function` with a value of the type.
template<typename FunctionT>
void WithType(NumberTypeT eType, FunctionT function)
{
    switch (eType) {
    case NumberTypeT::Int8:
        function(std::int8_t{});
        break;
    case NumberTypeT::UInt8:
        function(std::uint8_t{});
        break;
    case NumberTypeT::Int16:
        function(std::int16_t{});
        break;
    case NumberTypeT::UInt16:
        function(std::uint16_t{});
        break;
    case NumberTypeT::Int32:
        function(std::int32_t{});
        break;
    case NumberTypeT::UInt32:
        function(std::uint32_t{});
        break;
    case NumberTypeT::Float:
        function(float{});
        break;
    case NumberTypeT::Double:
        function(double{});
        break;
    }
}

template<typename T>
T LoadBigEndian(const char* pSource) noexcept
{
    std::array<char, sizeof(T)> bytes;
    std::reverse_copy(pSource, pSource + sizeof(T), bytes.begin());
    return SIO::LoadLittleEndian<T>(bytes.data());
}

} // namespace

std::size_t SizeOf(NumberTypeT eType) noexcept
{
    return RowOf(eType).nBytes;
}
double LeastOf(NumberTypeT eType) noexcept
{
    return RowOf(eType).dLeast;
}
double GreatestOf(NumberTypeT eType) noexcept
{
    return RowOf(eType).dGreatest;
}
std::string_view NameOf(NumberTypeT eType) noexcept
{
    return RowOf(eType).name;
}
std::string_view ShortName(NumberTypeT eType) noexcept
{
    return RowOf(eType).shortName;
}
std::string_view PlyName(NumberTypeT eType) noexcept
{
    return RowOf(eType).plyName;
}

std::optional<NumberTypeT> TypeNamed(std::string_view name) noexcept
{
    return Find([name](const TypeRowT& row) { return row.name == name; });
}

std::optional<NumberTypeT> TypeOfShortName(std::string_view name) noexcept
{
    return Find([name](const TypeRowT& row) { return row.shortName == name; });
}

std::optional<NumberTypeT> TypeOfPlyName(std::string_view name) noexcept
{
    return Find([name](const TypeRowT& row) { return row.plyName == name || row.plyOtherName == name; });
}

bool HoldsAllOf(NumberTypeT eType, NumberTypeT eOther) noexcept
{
    if (eType == eOther || eType == NumberTypeT::Double) return true;
    if (eType == NumberTypeT::Float)
        return !IsFloating(eOther) && SizeOf(eOther) <= 2; // 24 bits of precision
    return !IsFloating(eOther) && LeastOf(eType) <= LeastOf(eOther) &&
           GreatestOf(eType) >= GreatestOf(eOther);
}

void LoadNumbers(NumberTypeT eType, bool bBigEndian, const char* pFirst, std::size_t nStride,
                 std::size_t nCount, double* pdValues) noexcept
{
    WithType(eType, [=](auto zero) {
        using T = decltype(zero);
        if (bBigEndian) {
            for (std::size_t i = 0; i < nCount; ++i) {
                pdValues[i] = static_cast<double>(LoadBigEndian<T>(pFirst + i * nStride));
            }
        } else {
            for (std::size_t i = 0; i < nCount; ++i) {
                pdValues[i] = static_cast<double>(SIO::LoadLittleEndian<T>(pFirst + i * nStride));
            }
        }
    });
}

void StoreNumbers(NumberTypeT eType, const double* pdValues, std::size_t nCount, char* pFirst,
                  std::size_t nStride) noexcept
{
    WithType(eType, [=](auto zero) {
        for (std::size_t i = 0; i < nCount; ++i) {
            SIO::StoreLittleEndian(pFirst + i * nStride, static_cast<decltype(zero)>(pdValues[i]));
        }
    });
}

} // namespace Tool
