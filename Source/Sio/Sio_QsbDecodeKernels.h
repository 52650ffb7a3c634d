// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The inner loops of decoding: positions and moved bytes of a stretch of points. Every kernel gives the same
// bits as the others (NaN as NaN), touches in a record only what the layout writes, and reads no byte outside
// the stretch.
#pragma once

#include "Sio/Sio_QsbRecordLayout.h"

namespace SIO {

struct QsbDecodeStretchT
{
    const QsbRecordMovesT* pLayout;
    const char* pSource; ///< nPoints stored points, back to back
    std::size_t nPoints;
    const double* pMatrix; ///< 16 numbers, row-major
    QsbPointC* pPoints;
};

/// Portable.
void DecodePlain(const QsbDecodeStretchT& stretch);

/// What every machine of the architecture has: on x86-64 that is SSE2.
void DecodeBaseline(const QsbDecodeStretchT& stretch);

#if defined(__x86_64__)
/// Only where the machine has AVX2.
void DecodeAvx2(const QsbDecodeStretchT& stretch);
#endif

} // namespace SIO
