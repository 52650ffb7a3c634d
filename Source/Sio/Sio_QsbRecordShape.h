// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Turns the run-time numbers of a record layout into a type, so that one loop written as a template is
// compiled once for every combination of elements and branches on none of them.
#pragma once

#include "Sio/Sio_QsbRecordLayout.h"

namespace SIO {

/// The numbers of bytes that choose a specialisation; 0 where the element is absent or left to a loop.
template<bool bDoubleT, int nIntensityT, int nNoiseT, int nGridT, int nColorT>
struct QsbRecordShapeT
{
    static constexpr bool bDouble = bDoubleT;
    static constexpr int nIntensity = nIntensityT;
    static constexpr int nNoise = nNoiseT;
    static constexpr int nGrid = nGridT;
    static constexpr int nColor = nColorT;
};

namespace Detail {

template<bool bDouble, int nIntensity, int nNoise, int nGrid, typename BodyT>
void ChooseColor(const QsbRecordMovesT& layout, const BodyT& body)
{
    layout.oColor.ucBytes != 0 ? body.template Run<QsbRecordShapeT<bDouble, nIntensity, nNoise, nGrid, 4>>()
                               : body.template Run<QsbRecordShapeT<bDouble, nIntensity, nNoise, nGrid, 0>>();
}

template<bool bDouble, int nIntensity, int nNoise, typename BodyT>
void ChooseGrid(const QsbRecordMovesT& layout, const BodyT& body)
{
    switch (layout.oGrid.ucBytes) {
    case 4:
        return ChooseColor<bDouble, nIntensity, nNoise, 4>(layout, body);
    case 8:
        return ChooseColor<bDouble, nIntensity, nNoise, 8>(layout, body);
    default:
        return ChooseColor<bDouble, nIntensity, nNoise, 0>(layout, body);
    }
}

template<bool bDouble, int nIntensity, typename BodyT>
void ChooseNoise(const QsbRecordMovesT& layout, const BodyT& body)
{
    switch (layout.oNoise.ucBytes) {
    case 1:
        return ChooseGrid<bDouble, nIntensity, 1>(layout, body);
    case 2:
        return ChooseGrid<bDouble, nIntensity, 2>(layout, body);
    default:
        return ChooseGrid<bDouble, nIntensity, 0>(layout, body);
    }
}

template<bool bDouble, typename BodyT>
void ChooseIntensity(const QsbRecordMovesT& layout, const BodyT& body)
{
    layout.oIntensity.ucBytes != 0 ? ChooseNoise<bDouble, 2>(layout, body)
                                   : ChooseNoise<bDouble, 0>(layout, body);
}

} // namespace Detail

/// Calls `body.Run<Shape>()` with the shape of `layout`.
template<typename BodyT>
void WithRecordShape(const QsbRecordMovesT& layout, const BodyT& body)
{
    layout.bDouble ? Detail::ChooseIntensity<true>(layout, body)
                   : Detail::ChooseIntensity<false>(layout, body);
}

} // namespace SIO
