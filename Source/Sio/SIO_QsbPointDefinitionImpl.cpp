// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The container, and the table of all encodings that the factory makes elements from.
#include "Sio/SIO_QsbPointDefinitionImpl.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Sio/SIO_QsbPointDefElements.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\SIO_QsbPointDefinitionImpl)";

using ElementT = std::unique_ptr<SIO::PointDefinitionI>;

template<typename T>
ElementT Make()
{
    return std::make_unique<T>();
}

struct EncodingT
{
    std::uint32_t uiKind;
    std::uint32_t uiTypeCode;
    ElementT (*pMake)();
    ElementT (*pMakeRaw)();
};

template<typename T, typename RawT = T>
constexpr EncodingT Encoding(std::uint32_t uiKind, std::uint32_t uiTypeCode)
{
    return {uiKind, uiTypeCode, &Make<T>, &Make<RawT>};
}

namespace Format = SIO::QsbFormat;

const EncodingT s_aEncodings[] = {
    Encoding<SIO::PointDefPositionC<float>, SIO::PointDefPositionRawC<float>>(SIO::PD_POSITION,
                                                                              Format::s_uiTypeFloatTriple),
    Encoding<SIO::PointDefPositionC<double>, SIO::PointDefPositionRawC<double>>(SIO::PD_POSITION,
                                                                                Format::s_uiTypeDoubleTriple),
    Encoding<SIO::PointDefIntensityC<std::int16_t>>(SIO::PD_INTENSITY, Format::s_uiTypeInt16),
    Encoding<SIO::PointDefIntensityC<std::uint16_t>>(SIO::PD_INTENSITY, Format::s_uiTypeUInt16),
    Encoding<SIO::PointDefIntensityC<float>>(SIO::PD_INTENSITY, Format::s_uiTypeFloat),
    Encoding<SIO::PointDefLevelOfNoiseC<std::uint8_t>>(SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeUInt8),
    Encoding<SIO::PointDefLevelOfNoiseC<std::uint16_t>>(SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeUInt16),
    Encoding<SIO::PointDefLevelOfNoiseC<float>>(SIO::PD_LEVEL_OF_NOISE, Format::s_uiTypeFloat),
    Encoding<SIO::PointDefGridC<std::uint16_t>>(SIO::PD_GRID, Format::s_uiTypeUInt16Pair),
    Encoding<SIO::PointDefGridC<std::uint32_t>>(SIO::PD_GRID, Format::s_uiTypeUInt32Pair),
    Encoding<SIO::PointDefColorC<std::uint8_t>>(SIO::PD_COLOR, Format::s_uiTypeColor),
};

const EncodingT* FindEncoding(std::uint32_t uiKind, std::uint32_t uiTypeCode)
{
    const auto* it = std::find_if(std::begin(s_aEncodings), std::end(s_aEncodings), [&](const EncodingT& e) {
        return e.uiKind == uiKind && e.uiTypeCode == uiTypeCode;
    });
    return it == std::end(s_aEncodings) ? nullptr : it;
}

bool IsKnownKind(std::uint32_t uiKind)
{
    return std::any_of(std::begin(s_aEncodings), std::end(s_aEncodings),
                       [&](const EncodingT& e) { return e.uiKind == uiKind; });
}

} // namespace

namespace SIO {

void PointDefinitionC::Encode(const QsbPointGetterI& point, char* pszDestBuffer) const
{
    BSS_ASSERT(0 != pszDestBuffer);
    if (pszDestBuffer == nullptr) return;
    for (const auto& element : m_vecPointDefs) {
        element->Encode(point, pszDestBuffer);
        pszDestBuffer += element->GetSizeInBytes();
    }
}

void PointDefinitionC::Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                              const GMAT::Matrix4C& transformation) const
{
    const bool bStartsWithPosition =
        m_vecPointDefs.size() > 0 && PD_POSITION == m_vecPointDefs[0]->GetAvailablePointData();
    if (!bStartsWithPosition) {
        BSS_ASSERT(m_vecPointDefs.size() > 0 && PD_POSITION == m_vecPointDefs[0]->GetAvailablePointData());
        return;
    }
    BSS_ASSERT(0 != pszSrcBuffer);
    if (pszSrcBuffer == nullptr) return;
    for (const auto& element : m_vecPointDefs) {
        element->Decode(modifier, pszSrcBuffer, transformation);
        pszSrcBuffer += element->GetSizeInBytes();
    }
}

std::size_t PointDefinitionC::GetSizeInBytes() const
{
    if (m_tSizeInBytes == 0) {
        for (const auto& element : m_vecPointDefs)
            m_tSizeInBytes += element->GetSizeInBytes();
    }
    return m_tSizeInBytes;
}

std::uint32_t PointDefinitionC::GetAvailablePointData() const
{
    std::uint32_t uiKinds = 0;
    for (const auto& element : m_vecPointDefs)
        uiKinds |= element->GetAvailablePointData();
    return uiKinds;
}

std::uint32_t PointDefinitionC::GetTypeCode() const
{
    BSS_ASSERT(false);
    return 0;
}

void PointDefinitionC::Add(std::unique_ptr<PointDefinitionI> poPointDefinition)
{
    BSS_ASSERT(0 != poPointDefinition);
    if (poPointDefinition == nullptr) return;
    // Inserting behind the last of its kind keeps the order stable, and costs nothing for elements that come
    // in order: a hostile header holds millions.
    const auto position = std::upper_bound(
        m_vecPointDefs.begin(), m_vecPointDefs.end(), poPointDefinition->GetAvailablePointData(),
        [](std::uint32_t uiKind, const auto& element) { return uiKind < element->GetAvailablePointData(); });
    m_vecPointDefs.insert(position, std::move(poPointDefinition));
    m_tSizeInBytes = 0;
}

void PointDefinitionC::Clear()
{
    m_vecPointDefs.clear();
    m_tSizeInBytes = 0;
}

const PointDefinitionI* PointDefinitionC::GetElement(std::size_t i) const
{
    return i < m_vecPointDefs.size() ? m_vecPointDefs[i].get() : nullptr;
}

std::unique_ptr<PointDefinitionI> PointDefinitionC::CreateElement(std::uint32_t kind, std::uint32_t typeCode,
                                                                  bool bApplyTransformation)
{
    if (const EncodingT* encoding = FindEncoding(kind, typeCode)) {
        return bApplyTransformation ? encoding->pMake() : encoding->pMakeRaw();
    }
    // An encoding that a known kind does not have.
    if (IsKnownKind(kind)) BSS_ASSERT(false);
    return nullptr;
}

bool PointDefinitionC::CanCreateElement(std::uint32_t kind, std::uint32_t typeCode)
{
    return FindEncoding(kind, typeCode) != nullptr;
}

} // namespace SIO
