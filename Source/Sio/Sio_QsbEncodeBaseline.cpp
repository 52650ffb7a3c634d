// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Encoding on every machine: a plain loop, specialised by which elements there are.
#include "Sio/Sio_QsbEncodeKernels.h"

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbEncodeStore.h"
#include "Sio/Sio_QsbRecordShape.h"

#include <type_traits>

namespace SIO {

namespace {

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
struct EncodeLoopT
{
    const QsbEncodeStretchT& rStretch;

    template<typename S>
    void Run() const
    {
        using NumberT = std::conditional_t<S::bDouble, double, float>;
        // A copy: the compiler must assume that writing a byte changes whatever it can reach.
        const QsbRecordMovesT layout = *rStretch.pLayout;
        const QsbPointC* const pEnd = rStretch.pPoints + rStretch.nPoints;
        char* pTarget = rStretch.pDestination;
        for (const QsbPointC* pPoint = rStretch.pPoints; pPoint != pEnd; ++pPoint) {
            StoreLittleEndian(pTarget, static_cast<NumberT>(pPoint->x));
            StoreLittleEndian(pTarget + sizeof(NumberT), static_cast<NumberT>(pPoint->y));
            StoreLittleEndian(pTarget + 2 * sizeof(NumberT), static_cast<NumberT>(pPoint->z));
            EncodeTail<S>(pTarget + 3 * sizeof(NumberT), layout, *pPoint);
            pTarget += layout.tRecordBytes;
        }
    }
};

} // namespace

void EncodeBaseline(const QsbEncodeStretchT& stretch)
{
    WithRecordShape(*stretch.pLayout, EncodeLoopT{stretch});
}

} // namespace SIO
