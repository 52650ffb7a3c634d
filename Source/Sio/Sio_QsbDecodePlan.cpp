// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Kernel first, loops after it, tile by tile so that a tile's records are still in the cache for the loops.
#include "Sio/Sio_QsbDecodePlan.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbDecodeKernels.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_Truncate.h"

#include <algorithm>

namespace SIO {

namespace {

constexpr std::size_t s_nTilePoints = 256;

void DecodeStretchWith(QsbInstructionSetT eSet, const QsbDecodeStretchT& stretch)
{
#if defined(__x86_64__)
    if (eSet == QsbInstructionSetT::eAvx2) return DecodeAvx2(stretch);
#endif
    if (eSet == QsbInstructionSetT::ePlain) return DecodePlain(stretch);
    DecodeBaseline(stretch);
}

/// The low bits of a stored number, as decoding through a double gives them.
template<typename T, typename StoredT>
T LowBits(const char* pSource)
{
    const StoredT stored = LoadLittleEndian<StoredT>(pSource);
    if constexpr (std::is_floating_point_v<StoredT>) {
        return TruncateToLowBits<T>(stored);
    } else {
        return static_cast<T>(stored);
    }
}

template<typename StoredT, typename T>
void LoopOver(const char* pSource, std::size_t nRecordBytes, QsbPointC* pPoints, std::size_t nPoints,
              T QsbPointC::*pField)
{
    for (std::size_t i = 0; i < nPoints; ++i)
        pPoints[i].*pField = LowBits<T, StoredT>(pSource + i * nRecordBytes);
}

void LoopOverElement(const QsbLoopElementT& loop, const char* pSource, std::size_t nRecordBytes,
                     QsbPointC* pPoints, std::size_t nPoints)
{
    const auto over = [&]<typename StoredT, typename T>(StoredT, T QsbPointC::*pField, std::size_t tOffset) {
        LoopOver<StoredT>(pSource + loop.tOffset + tOffset, nRecordBytes, pPoints, nPoints, pField);
    };
    const auto overGrid = [&]<typename StoredT>(StoredT stored) {
        over(stored, &QsbPointC::gridIndex0, 0);
        over(stored, &QsbPointC::gridIndex1, sizeof(StoredT));
    };
    switch (loop.uiKind) {
    case PD_INTENSITY:
        if (loop.uiTypeCode == QsbFormat::s_uiTypeFloat) return over(float{}, &QsbPointC::intensity, 0);
        return over(std::uint16_t{}, &QsbPointC::intensity, 0); // int16 has the same low bits
    case PD_LEVEL_OF_NOISE:
        if (loop.uiTypeCode == QsbFormat::s_uiTypeFloat) return over(float{}, &QsbPointC::levelOfNoise, 0);
        if (loop.uiTypeCode == QsbFormat::s_uiTypeUInt16)
            return over(std::uint16_t{}, &QsbPointC::levelOfNoise, 0);
        return over(std::uint8_t{}, &QsbPointC::levelOfNoise, 0);
    case PD_GRID:
        return loop.uiTypeCode == QsbFormat::s_uiTypeUInt16Pair ? overGrid(std::uint16_t{})
                                                                : overGrid(std::uint32_t{});
    default:
        over(std::uint8_t{}, &QsbPointC::red, 0);
        over(std::uint8_t{}, &QsbPointC::green, 1);
        over(std::uint8_t{}, &QsbPointC::blue, 2);
    }
}

} // namespace

void QsbDecodePlanC::Decode(const char* pSource, std::size_t nPoints, const GMAT::Matrix4C& matrix,
                            QsbPointC* pPoints, QsbInstructionSetT eSet) const
{
    const std::size_t nTile = m_oLayout.vecLoops.empty() ? std::max<std::size_t>(nPoints, 1) : s_nTilePoints;
    for (std::size_t nDone = 0; nDone < nPoints; nDone += nTile) {
        const std::size_t nPart = std::min(nTile, nPoints - nDone);
        const char* pTile = pSource + nDone * m_oLayout.tRecordBytes;
        DecodeStretchWith(eSet, {&m_oLayout, pTile, nPart, &matrix.v[0].m_tuple[0], pPoints + nDone});
        for (const QsbLoopElementT& loop : m_oLayout.vecLoops) {
            LoopOverElement(loop, pTile, m_oLayout.tRecordBytes, pPoints + nDone, nPart);
        }
    }
}

} // namespace SIO
