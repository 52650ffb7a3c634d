// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The element classes of a stored point, one template per kind and one instance per encoding. A template says
// how its kind is read and written; the encoding's number type says how many bytes that takes. Layouts:
// Docs/file-format.md. They are made by the factory in SIO_QsbPointDefinitionImpl.
#pragma once

#include "Sio/SIO_QsbPointDefinition.h"

#include <cstdint>

namespace SIO {

/// What all elements share: kind, size and type code are fixed per class.
template<std::uint32_t uiKind, std::size_t nBytes>
class PointDefElementT : public PointDefinitionI
{
public:
    std::size_t GetSizeInBytes() const final { return nBytes; }
    std::uint32_t GetAvailablePointData() const final { return uiKind; }
};

/// x, y, z as three numbers, passed on without any transformation.
template<typename T>
class PointDefPositionRawC : public PointDefElementT<PD_POSITION, 3 * sizeof(T)>
{
public:
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
    std::uint32_t GetTypeCode() const override;
};

/// x, y, z as three numbers, mapped by the transformation in double precision when decoded. Encoding applies
/// no inverse transformation.
template<typename T>
class PointDefPositionC final : public PointDefPositionRawC<T>
{
public:
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
};

/// One number: int16, uint16 or float.
template<typename T>
class PointDefIntensityC final : public PointDefElementT<PD_INTENSITY, sizeof(T)>
{
public:
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
    std::uint32_t GetTypeCode() const override;
};

/// One number: uint8, uint16 or float.
template<typename T>
class PointDefLevelOfNoiseC final : public PointDefElementT<PD_LEVEL_OF_NOISE, sizeof(T)>
{
public:
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
    std::uint32_t GetTypeCode() const override;
};

/// Two numbers, uint16 or uint32: the row and the column.
template<typename T>
class PointDefGridC final : public PointDefElementT<PD_GRID, 2 * sizeof(T)>
{
public:
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
    std::uint32_t GetTypeCode() const override;
};

/// Four channels: red, green, blue and one that is ignored when read.
template<typename T>
class PointDefColorC final : public PointDefElementT<PD_COLOR, 4 * sizeof(T)>
{
public:
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;
    std::uint32_t GetTypeCode() const override;
};

} // namespace SIO
