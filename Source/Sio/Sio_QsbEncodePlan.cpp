// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Kernel first, then a loop for each element that is not mere bytes, tile by tile so that a tile is still in
// the cache for it.
#include "Sio/Sio_QsbEncodePlan.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbEncodeKernels.h"
#include "Sio/Sio_QsbEncodeStore.h"
#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>

namespace SIO {

namespace {

constexpr std::size_t s_nTilePoints = 256;

/// Returns how many points at the front were encoded by the shuffle.
std::size_t EncodeStretchWith(QsbInstructionSetT eSet, const QsbEncodeStretchT& stretch)
{
#if defined(__x86_64__)
    if (eSet == QsbInstructionSetT::eAvx2) return EncodeAvx2(stretch);
#endif
    (void)eSet;
    EncodeBaseline(stretch);
    return 0;
}

template<typename StoreT>
void ForEachTarget(char* pDestination, std::size_t nRecordBytes, std::size_t nPoints,
                   const QsbPointC* pPoints, StoreT store)
{
    for (std::size_t i = 0; i < nPoints; ++i)
        store(pDestination + i * nRecordBytes, pPoints[i]);
}

/// Integers take the low bits of the field, floats its value.
template<typename StoredT, typename T>
void LoopOverField(char* pDestination, std::size_t nRecordBytes, std::size_t nPoints,
                   const QsbPointC* pPoints, T QsbPointC::*pField)
{
    ForEachTarget(pDestination, nRecordBytes, nPoints, pPoints, [&](char* pTarget, const QsbPointC& point) {
        StoreLittleEndian(pTarget, static_cast<StoredT>(point.*pField));
    });
}

void LoopOverElement(const QsbLoopElementT& loop, char* pDestination, std::size_t nBytes, std::size_t nPoints,
                     const QsbPointC* pPoints)
{
    char* const p = pDestination + loop.tOffset;
    const bool bFloat = loop.uiTypeCode == QsbFormat::s_uiTypeFloat;
    switch (loop.uiKind) {
    case PD_INTENSITY:
        return bFloat ? LoopOverField<float>(p, nBytes, nPoints, pPoints, &QsbPointC::intensity)
                      : LoopOverField<std::uint16_t>(p, nBytes, nPoints, pPoints, &QsbPointC::intensity);
    case PD_LEVEL_OF_NOISE:
        if (bFloat) return LoopOverField<float>(p, nBytes, nPoints, pPoints, &QsbPointC::levelOfNoise);
        return loop.uiTypeCode == QsbFormat::s_uiTypeUInt16
                   ? LoopOverField<std::uint16_t>(p, nBytes, nPoints, pPoints, &QsbPointC::levelOfNoise)
                   : LoopOverField<std::uint8_t>(p, nBytes, nPoints, pPoints, &QsbPointC::levelOfNoise);
    case PD_GRID:
        return loop.uiTypeCode == QsbFormat::s_uiTypeUInt16Pair
                   ? ForEachTarget(p, nBytes, nPoints, pPoints, &StoreGrid<std::uint16_t>)
                   : ForEachTarget(p, nBytes, nPoints, pPoints, &StoreGrid<std::uint32_t>);
    default:
        return ForEachTarget(p, nBytes, nPoints, pPoints, &StoreColor);
    }
}

} // namespace

void QsbEncodePlanC::Encode(const QsbPointC* pPoints, std::size_t nPoints, char* pDestination,
                            QsbInstructionSetT eSet) const
{
    const std::size_t nTile = m_oLayout.vecLoops.empty() ? std::max<std::size_t>(nPoints, 1) : s_nTilePoints;
    for (std::size_t nDone = 0; nDone < nPoints; nDone += nTile) {
        const std::size_t nPart = std::min(nTile, nPoints - nDone);
        char* pTile = pDestination + nDone * m_oLayout.tRecordBytes;
        const std::size_t nShuffled = EncodeStretchWith(eSet, {&m_oLayout, pPoints + nDone, nPart, pTile});
        for (const QsbLoopElementT& loop : m_oLayout.vecLoops) {
            const std::size_t nStored = loop.bShuffled ? nShuffled : 0;
            LoopOverElement(loop, pTile + nStored * m_oLayout.tRecordBytes, m_oLayout.tRecordBytes,
                            nPart - nStored, pPoints + nDone + nStored);
        }
    }
}

} // namespace SIO
