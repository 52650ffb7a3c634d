// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding point by point in a plain loop, specialised by which elements there are and by who maps positions.
#pragma once

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbDecodeKernels.h"
#include "Sio/Sio_QsbRecordShape.h"

#include <type_traits>

namespace SIO {

namespace Detail {

template<typename S>
void DecodeTail(const char* pTail, const QsbRecordMovesT& layout, QsbPointC& point)
{
    if constexpr (S::nIntensity != 0) {
        point.intensity = LoadLittleEndian<std::uint16_t>(pTail + layout.oIntensity.ucOffset);
    }
    if constexpr (S::nNoise == 1) {
        point.levelOfNoise = LoadLittleEndian<std::uint8_t>(pTail + layout.oNoise.ucOffset);
    } else if constexpr (S::nNoise == 2) {
        point.levelOfNoise = LoadLittleEndian<std::uint16_t>(pTail + layout.oNoise.ucOffset);
    }
    if constexpr (S::nGrid == 4) {
        point.gridIndex0 = LoadLittleEndian<std::uint16_t>(pTail + layout.oGrid.ucOffset);
        point.gridIndex1 = LoadLittleEndian<std::uint16_t>(pTail + layout.oGrid.ucOffset + 2);
    } else if constexpr (S::nGrid == 8) {
        point.gridIndex0 = LoadLittleEndian<std::uint32_t>(pTail + layout.oGrid.ucOffset);
        point.gridIndex1 = LoadLittleEndian<std::uint32_t>(pTail + layout.oGrid.ucOffset + 4);
    }
    if constexpr (S::nColor != 0) {
        const auto* pColor = reinterpret_cast<const std::uint8_t*>(pTail + layout.oColor.ucOffset);
        point.red = pColor[0];
        point.green = pColor[1];
        point.blue = pColor[2];
    }
}

/// The loop that a shape chooses.
template<typename TransformerT, bool bRaw>
struct DecodeLoopT
{
    const QsbDecodeStretchT& rStretch;

    template<typename S>
    void Run() const
    {
        using NumberT = std::conditional_t<S::bDouble, double, float>;
        // A copy: the compiler must assume that writing a byte of a point changes whatever it can reach.
        const QsbRecordMovesT layout = *rStretch.pLayout;
        const TransformerT transform(rStretch.pMatrix);
        const char* pSource = rStretch.pSource;
        QsbPointC* pPoint = rStretch.pPoints;
        for (QsbPointC* const pEnd = pPoint + rStretch.nPoints; pPoint != pEnd; ++pPoint) {
            const double x = LoadLittleEndian<NumberT>(pSource);
            const double y = LoadLittleEndian<NumberT>(pSource + sizeof(NumberT));
            const double z = LoadLittleEndian<NumberT>(pSource + 2 * sizeof(NumberT));
            if constexpr (bRaw) {
                pPoint->x = x;
                pPoint->y = y;
                pPoint->z = z;
            } else {
                transform(x, y, z, *pPoint);
            }
            DecodeTail<S>(pSource + 3 * sizeof(NumberT), layout, *pPoint);
            pSource += layout.tRecordBytes;
        }
    }
};

} // namespace Detail

/// A TransformerT is made of a matrix's 16 numbers, row-major; called with a position and a record, it sets
/// the record's.
template<typename TransformerT>
void DecodeInLoop(const QsbDecodeStretchT& stretch)
{
    stretch.pLayout->bRaw
        ? WithRecordShape(*stretch.pLayout, Detail::DecodeLoopT<TransformerT, true>{stretch})
        : WithRecordShape(*stretch.pLayout, Detail::DecodeLoopT<TransformerT, false>{stretch});
}

} // namespace SIO
