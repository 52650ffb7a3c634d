// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding on every machine: a plain loop, specialised by which elements there are. On x86-64 two lanes of
// SSE2 are used, elsewhere plain arithmetic in the same order.
#include "Sio/Sio_QsbDecodeKernels.h"

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbRecordShape.h"

#include <cstring>
#include <type_traits>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace SIO {

namespace {

#if defined(__SSE2__)

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

#else

class TransformerC
{
public:
    explicit TransformerC(const double* m) { std::memcpy(m_ad, m, sizeof m_ad); }

    void operator()(double x, double y, double z, QsbPointC& point) const
    {
        const double* m = m_ad;
        const double w = m[12] * x + m[13] * y + m[14] * z + m[15];
        point.x = (m[0] * x + m[1] * y + m[2] * z + m[3]) / w;
        point.y = (m[4] * x + m[5] * y + m[6] * z + m[7]) / w;
        point.z = (m[8] * x + m[9] * y + m[10] * z + m[11]) / w;
    }

private:
    double m_ad[16];
};

#endif

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
template<bool bRaw>
struct DecodeLoopT
{
    const QsbDecodeStretchT& rStretch;

    template<typename S>
    void Run() const
    {
        using NumberT = std::conditional_t<S::bDouble, double, float>;
        // A copy: the compiler must assume that writing a byte of a point changes whatever it can reach.
        const QsbRecordMovesT layout = *rStretch.pLayout;
        const TransformerC transform(rStretch.pMatrix);
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

} // namespace

void DecodeBaseline(const QsbDecodeStretchT& stretch)
{
    stretch.pLayout->bRaw ? WithRecordShape(*stretch.pLayout, DecodeLoopT<true>{stretch})
                          : WithRecordShape(*stretch.pLayout, DecodeLoopT<false>{stretch});
}

} // namespace SIO
