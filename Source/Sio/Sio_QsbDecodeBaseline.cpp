// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding on every machine of an architecture. On x86-64 positions are mapped in two lanes of SSE2;
// elsewhere plain arithmetic does it.
#include "Sio/Sio_QsbDecodeKernels.h"

#if defined(__SSE2__)
#include "Sio/Sio_QsbDecodeLoop.h"

#include <emmintrin.h>

namespace SIO {

namespace {

/// Maps positions: x and y in one vector, z and w in another.
class TransformerC
{
public:
    explicit TransformerC(const double* m)
    {
        for (int j = 0; j < 4; ++j) {
            m_aXY[j] = _mm_setr_pd(m[j], m[4 + j]);
            m_aZW[j] = _mm_setr_pd(m[8 + j], m[12 + j]);
        }
    }

    void operator()(double dX, double dY, double dZ, QsbPointC& point) const
    {
        const __m128d x = _mm_set1_pd(dX);
        const __m128d y = _mm_set1_pd(dY);
        const __m128d z = _mm_set1_pd(dZ);
        __m128d xy = _mm_add_pd(_mm_mul_pd(m_aXY[0], x), _mm_mul_pd(m_aXY[1], y));
        __m128d zw = _mm_add_pd(_mm_mul_pd(m_aZW[0], x), _mm_mul_pd(m_aZW[1], y));
        xy = _mm_add_pd(_mm_add_pd(xy, _mm_mul_pd(m_aXY[2], z)), m_aXY[3]);
        zw = _mm_add_pd(_mm_add_pd(zw, _mm_mul_pd(m_aZW[2], z)), m_aZW[3]);
        // Dividing by exactly 1 changes nothing, so it is left out; it is the rule for rigid matrices.
        if ((_mm_movemask_pd(_mm_cmpeq_pd(zw, _mm_set1_pd(1.0))) & 2) == 0) {
            const __m128d w = _mm_unpackhi_pd(zw, zw);
            xy = _mm_div_pd(xy, w);
            zw = _mm_div_pd(zw, w);
        }
        _mm_storeu_pd(&point.x, xy);
        _mm_store_sd(&point.z, zw);
    }

private:
    __m128d m_aXY[4];
    __m128d m_aZW[4];
};

} // namespace

void DecodeBaseline(const QsbDecodeStretchT& stretch)
{
    DecodeInLoop<TransformerC>(stretch);
}

} // namespace SIO

#else

namespace SIO {

void DecodeBaseline(const QsbDecodeStretchT& stretch)
{
    DecodePlain(stretch);
}

} // namespace SIO

#endif
