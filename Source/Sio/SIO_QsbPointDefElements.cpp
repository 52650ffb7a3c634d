// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reading and writing the bytes of each element.
#include "Sio/SIO_QsbPointDefElements.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Sio/Sio_Truncate.h"

#include <type_traits>

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\SIO_QsbPointDefinitionImpl)";

bool HasSource(const char* pszSrcBuffer)
{
    BSS_ASSERT(0 != pszSrcBuffer);
    return pszSrcBuffer != nullptr;
}

bool HasDestination(const char* pszDestBuffer)
{
    BSS_ASSERT(0 != pszDestBuffer);
    return pszDestBuffer != nullptr;
}

/// The double that passes for element `i` of an array of T.
template<typename T>
double LoadValue(const char* pszSrcBuffer, std::size_t i)
{
    return static_cast<double>(SIO::LoadLittleEndian<T>(pszSrcBuffer + i * sizeof(T)));
}

/// Writes a double as element `i` of an array of T: floats round, int16 truncates through 32 bits, unsigned
/// numbers through 64 bits.
template<typename T>
void StoreValue(char* pszDestBuffer, std::size_t i, double value)
{
    T stored;
    if constexpr (std::is_floating_point_v<T>) {
        stored = static_cast<T>(value);
    } else if constexpr (std::is_signed_v<T>) {
        stored = static_cast<T>(static_cast<std::uint32_t>(SIO::TruncateToInt32(value)));
    } else {
        stored = SIO::TruncateToLowBits<T>(value);
    }
    SIO::StoreLittleEndian(pszDestBuffer + i * sizeof(T), stored);
}

} // namespace

namespace SIO {

template<typename T>
void PointDefPositionRawC<T>::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    if (!HasDestination(pszDestBuffer)) return;
    double x, y, z;
    point.GetPosition(x, y, z);
    StoreValue<T>(pszDestBuffer, 0, x);
    StoreValue<T>(pszDestBuffer, 1, y);
    StoreValue<T>(pszDestBuffer, 2, z);
}

template<typename T>
void PointDefPositionRawC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                                     const GMAT::Matrix4C& /*transformation*/) const
{
    if (!HasSource(pszSrcBuffer)) return;
    modifier.SetPosition(LoadValue<T>(pszSrcBuffer, 0), LoadValue<T>(pszSrcBuffer, 1),
                         LoadValue<T>(pszSrcBuffer, 2));
}

template<typename T>
std::uint32_t PointDefPositionRawC<T>::GetTypeCode() const
{
    return std::is_same_v<T, float> ? QsbFormat::s_uiTypeFloatTriple : QsbFormat::s_uiTypeDoubleTriple;
}

template<typename T>
void PointDefPositionC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                                  const GMAT::Matrix4C& transformation) const
{
    if (!HasSource(pszSrcBuffer)) return;
    double x = LoadValue<T>(pszSrcBuffer, 0);
    double y = LoadValue<T>(pszSrcBuffer, 1);
    double z = LoadValue<T>(pszSrcBuffer, 2);
    GMAT::TransformPosition(transformation, x, y, z);
    modifier.SetPosition(x, y, z);
}

template<typename T>
void PointDefIntensityC<T>::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    if (!HasDestination(pszDestBuffer)) return;
    StoreValue<T>(pszDestBuffer, 0, point.GetIntensity());
}

template<typename T>
void PointDefIntensityC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                                   const GMAT::Matrix4C& /*transformation*/) const
{
    if (!HasSource(pszSrcBuffer)) return;
    modifier.SetIntensity(LoadValue<T>(pszSrcBuffer, 0));
}

template<typename T>
std::uint32_t PointDefIntensityC<T>::GetTypeCode() const
{
    if constexpr (std::is_same_v<T, std::int16_t>) return QsbFormat::s_uiTypeInt16;
    if constexpr (std::is_same_v<T, std::uint16_t>) return QsbFormat::s_uiTypeUInt16;
    return QsbFormat::s_uiTypeFloat;
}

template<typename T>
void PointDefLevelOfNoiseC<T>::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    if (!HasDestination(pszDestBuffer)) return;
    StoreValue<T>(pszDestBuffer, 0, point.GetLevelOfNoise());
}

template<typename T>
void PointDefLevelOfNoiseC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                                      const GMAT::Matrix4C& /*transformation*/) const
{
    if (!HasSource(pszSrcBuffer)) return;
    modifier.SetLevelOfNoise(LoadValue<T>(pszSrcBuffer, 0));
}

template<typename T>
std::uint32_t PointDefLevelOfNoiseC<T>::GetTypeCode() const
{
    if constexpr (std::is_same_v<T, std::uint8_t>) return QsbFormat::s_uiTypeUInt8;
    if constexpr (std::is_same_v<T, std::uint16_t>) return QsbFormat::s_uiTypeUInt16;
    return QsbFormat::s_uiTypeFloat;
}

template<typename T>
void PointDefGridC<T>::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    if (!HasDestination(pszDestBuffer)) return;
    double first, second;
    point.GetGridIndex(first, second);
    StoreValue<T>(pszDestBuffer, 0, first);
    StoreValue<T>(pszDestBuffer, 1, second);
}

template<typename T>
void PointDefGridC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                              const GMAT::Matrix4C& /*transformation*/) const
{
    if (!HasSource(pszSrcBuffer)) return;
    modifier.SetGridIndex(LoadValue<T>(pszSrcBuffer, 0), LoadValue<T>(pszSrcBuffer, 1));
}

template<typename T>
std::uint32_t PointDefGridC<T>::GetTypeCode() const
{
    return std::is_same_v<T, std::uint16_t> ? QsbFormat::s_uiTypeUInt16Pair : QsbFormat::s_uiTypeUInt32Pair;
}

template<typename T>
void PointDefColorC<T>::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    if (!HasDestination(pszDestBuffer)) return;
    double red, green, blue, fourth;
    point.GetColor(red, green, blue, fourth);
    StoreValue<T>(pszDestBuffer, 0, red);
    StoreValue<T>(pszDestBuffer, 1, green);
    StoreValue<T>(pszDestBuffer, 2, blue);
    StoreValue<T>(pszDestBuffer, 3, fourth);
}

template<typename T>
void PointDefColorC<T>::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                               const GMAT::Matrix4C& /*transformation*/) const
{
    if (!HasSource(pszSrcBuffer)) return;
    modifier.SetColor(LoadValue<T>(pszSrcBuffer, 0), LoadValue<T>(pszSrcBuffer, 1),
                      LoadValue<T>(pszSrcBuffer, 2));
}

template<typename T>
std::uint32_t PointDefColorC<T>::GetTypeCode() const
{
    return QsbFormat::s_uiTypeColor;
}

template class PointDefPositionRawC<float>;
template class PointDefPositionRawC<double>;
template class PointDefPositionC<float>;
template class PointDefPositionC<double>;
template class PointDefIntensityC<std::int16_t>;
template class PointDefIntensityC<std::uint16_t>;
template class PointDefIntensityC<float>;
template class PointDefLevelOfNoiseC<std::uint8_t>;
template class PointDefLevelOfNoiseC<std::uint16_t>;
template class PointDefLevelOfNoiseC<float>;
template class PointDefGridC<std::uint16_t>;
template class PointDefGridC<std::uint32_t>;
template class PointDefColorC<std::uint8_t>;

} // namespace SIO
