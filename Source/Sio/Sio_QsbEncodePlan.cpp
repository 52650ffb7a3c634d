// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A plain loop, specialised by which elements there are; then a loop for each element that is not mere bytes,
// tile by tile so that a tile is still in the cache for it.
#include "Sio/Sio_QsbEncodePlan.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbRecordShape.h"

#include <algorithm>
#include <type_traits>

namespace SIO {

namespace {

constexpr std::size_t s_nTilePoints = 256;
constexpr std::uint8_t s_ucFourthChannel = 255;

void StoreColor(char* pDestination, const QsbPointC& point)
{
    StoreLittleEndian(pDestination, point.red);
    StoreLittleEndian(pDestination + 1, point.green);
    StoreLittleEndian(pDestination + 2, point.blue);
    StoreLittleEndian(pDestination + 3, s_ucFourthChannel);
}

template<typename T>
void StoreGrid(char* pDestination, const QsbPointC& point)
{
    StoreLittleEndian(pDestination, static_cast<T>(point.gridIndex0));
    StoreLittleEndian(pDestination + sizeof(T), static_cast<T>(point.gridIndex1));
}

template<typename S>
void EncodeTail(char* pTail, const QsbRecordMovesT& layout, const QsbPointC& point)
{
    if constexpr (S::nIntensity != 0) StoreLittleEndian(pTail + layout.oIntensity.ucOffset, point.intensity);
    if constexpr (S::nNoise == 1) {
        StoreLittleEndian(pTail + layout.oNoise.ucOffset, static_cast<std::uint8_t>(point.levelOfNoise));
    } else if constexpr (S::nNoise == 2) {
        StoreLittleEndian(pTail + layout.oNoise.ucOffset, point.levelOfNoise);
    }
    if constexpr (S::nGrid == 4) {
        StoreGrid<std::uint16_t>(pTail + layout.oGrid.ucOffset, point);
    } else if constexpr (S::nGrid == 8) {
        StoreGrid<std::uint32_t>(pTail + layout.oGrid.ucOffset, point);
    }
    if constexpr (S::nColor != 0) StoreColor(pTail + layout.oColor.ucOffset, point);
}

/// The loop that a shape chooses.
struct EncodeStretchT
{
    const QsbRecordMovesT* pLayout;
    const QsbPointC* pPoints;
    std::size_t nPoints;
    char* pDestination;

    template<typename S>
    void Run() const
    {
        using NumberT = std::conditional_t<S::bDouble, double, float>;
        // A copy: the compiler must assume that writing a byte changes whatever it can reach.
        const QsbRecordMovesT layout = *pLayout;
        char* pTarget = pDestination;
        for (const QsbPointC* pPoint = pPoints; pPoint != pPoints + nPoints; ++pPoint) {
            StoreLittleEndian(pTarget, static_cast<NumberT>(pPoint->x));
            StoreLittleEndian(pTarget + sizeof(NumberT), static_cast<NumberT>(pPoint->y));
            StoreLittleEndian(pTarget + 2 * sizeof(NumberT), static_cast<NumberT>(pPoint->z));
            EncodeTail<S>(pTarget + 3 * sizeof(NumberT), layout, *pPoint);
            pTarget += layout.tRecordBytes;
        }
    }
};

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

void QsbEncodePlanC::Encode(const QsbPointC* pPoints, std::size_t nPoints, char* pDestination) const
{
    const std::size_t nTile = m_oLayout.vecLoops.empty() ? std::max<std::size_t>(nPoints, 1) : s_nTilePoints;
    for (std::size_t nDone = 0; nDone < nPoints; nDone += nTile) {
        const std::size_t nPart = std::min(nTile, nPoints - nDone);
        char* pTile = pDestination + nDone * m_oLayout.tRecordBytes;
        WithRecordShape(m_oLayout, EncodeStretchT{&m_oLayout, pPoints + nDone, nPart, pTile});
        for (const QsbLoopElementT& loop : m_oLayout.vecLoops) {
            LoopOverElement(loop, pTile, m_oLayout.tRecordBytes, nPart, pPoints + nDone);
        }
    }
}

} // namespace SIO
