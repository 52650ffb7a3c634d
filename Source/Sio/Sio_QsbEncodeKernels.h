// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The inner loops of encoding: positions and moved bytes of a stretch of points. Every kernel stores the same
// bytes as the others where the layout has positions and moved elements; the bytes of elements that are left
// to loops hold anything until these have run. No byte outside the stretch is read or written.
#pragma once

#include "Sio/Sio_QsbRecordLayout.h"

namespace SIO {

struct QsbEncodeStretchT
{
    const QsbRecordMovesT* pLayout;
    const QsbPointC* pPoints;
    std::size_t nPoints;
    char* pDestination; ///< room for nPoints stored points, back to back
};

/// Portable.
void EncodeBaseline(const QsbEncodeStretchT& stretch);

#if defined(__x86_64__)
/// Only where the machine has AVX2. Returns how many points were encoded by the shuffle, the others behind
/// them by EncodeBaseline.
std::size_t EncodeAvx2(const QsbEncodeStretchT& stretch);
#endif

} // namespace SIO
