// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Decoding with AVX2. A point is one column of four doubles: x, y, z and w come out of three multiplications
// and three additions, each lane in the order of operations that the format defines, and fused operations
// stay off. The sixteen bytes behind the position are put in place by one shuffle. Vector loads reach beyond
// a stored point, never beyond the stretch: its last points are left to the portable kernel.
#include "Sio/Sio_QsbDecodeKernels.h"

#if defined(__x86_64__)

#include <algorithm>
#include <cstring>
#include <immintrin.h>

// On the functions rather than on the file, so that no inline function of a header is compiled for AVX2 and
// then chosen by the linker for everyone.
#define SIO_AVX2 __attribute__((target("avx2")))

namespace SIO {

namespace {

/// Bytes that the vector loads take from the beginning of a stored point.
constexpr std::size_t Reach(bool bDouble)
{
    return (bDouble ? 3 * sizeof(double) : 3 * sizeof(float)) + s_nTailBytes;
}

/// The first two numbers and the third of a position of floats, as doubles. Not all three at once: what
/// follows them would be widened as well, and as a float that may be denormal, which some processors take a
/// hundred times as long for.
SIO_AVX2 inline __m128d LoadXY(const char* pSource)
{
    return _mm_cvtps_pd(_mm_loadu_ps(reinterpret_cast<const float*>(pSource)));
}

SIO_AVX2 inline __m128d LoadZ(const char* pSource)
{
    float fZ; // at any address, which a load through a pointer to float must not be
    std::memcpy(&fZ, pSource + 2 * sizeof(float), sizeof fZ);
    return _mm_cvtss_sd(_mm_setzero_pd(), _mm_set_ss(fZ));
}

/// A double at any address, in all four lanes.
SIO_AVX2 inline __m256d Broadcast(const char* pSource)
{
    double d;
    std::memcpy(&d, pSource, sizeof d);
    return _mm256_set1_pd(d);
}

template<bool bDouble, bool bRaw>
SIO_AVX2 void DecodeStretch(const QsbDecodeStretchT& stretch)
{
    constexpr std::size_t nPositionBytes = (bDouble ? sizeof(double) : sizeof(float)) * 3;
    const double* m = stretch.pMatrix;
    const __m256d column0 = _mm256_setr_pd(m[0], m[4], m[8], m[12]);
    const __m256d column1 = _mm256_setr_pd(m[1], m[5], m[9], m[13]);
    const __m256d column2 = _mm256_setr_pd(m[2], m[6], m[10], m[14]);
    const __m256d column3 = _mm256_setr_pd(m[3], m[7], m[11], m[15]);
    const __m256d one = _mm256_set1_pd(1.0);
    const __m128i shuffle = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stretch.pLayout->aucShuffle));
    const __m128i written = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stretch.pLayout->aucWritten));
    const std::size_t nRecordBytes = stretch.pLayout->tRecordBytes;
    const char* pSource = stretch.pSource;
    char* pTarget = reinterpret_cast<char*>(stretch.pPoints);

    for (std::size_t i = 0; i < stretch.nPoints; ++i) {
        __m256d position;
        if constexpr (bRaw) {
            if constexpr (bDouble) {
                position = _mm256_loadu_pd(reinterpret_cast<const double*>(pSource));
            } else {
                position = _mm256_set_m128d(LoadZ(pSource), LoadXY(pSource));
            }
        } else {
            __m256d x, y, z;
            if constexpr (bDouble) {
                x = Broadcast(pSource);
                y = Broadcast(pSource + sizeof(double));
                z = Broadcast(pSource + 2 * sizeof(double));
            } else {
                const __m128d xy = LoadXY(pSource);
                x = _mm256_broadcastsd_pd(xy);
                y = _mm256_permute4x64_pd(_mm256_castpd128_pd256(xy), 0x55);
                z = _mm256_broadcastsd_pd(LoadZ(pSource));
            }
            position = _mm256_add_pd(_mm256_mul_pd(column0, x), _mm256_mul_pd(column1, y));
            position = _mm256_add_pd(_mm256_add_pd(position, _mm256_mul_pd(column2, z)), column3);
            // Dividing by exactly 1 changes nothing, so it is left out; it is the rule for rigid matrices.
            if ((_mm256_movemask_pd(_mm256_cmp_pd(position, one, _CMP_EQ_OQ)) & 8) == 0) {
                position = _mm256_div_pd(position, _mm256_permute4x64_pd(position, 0xFF));
            }
        }
        __m128i* pTail = reinterpret_cast<__m128i*>(pTarget + s_nTailOffset);
        const __m128i before = _mm_loadu_si128(pTail);
        const __m128i moved = _mm_shuffle_epi8(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSource + nPositionBytes)), shuffle);
        // The fourth lane is overwritten by the tail.
        _mm256_storeu_pd(reinterpret_cast<double*>(pTarget), position);
        _mm_storeu_si128(pTail, _mm_blendv_epi8(before, moved, written));
        pSource += nRecordBytes;
        pTarget += sizeof(QsbPointC);
    }
}

} // namespace

void DecodeAvx2(const QsbDecodeStretchT& stretch)
{
    const QsbRecordMovesT& layout = *stretch.pLayout;
    // Points whose loads would pass the end of the stretch: those that begin less than the reach before it.
    const std::size_t nShort = (Reach(layout.bDouble) - 1) / layout.tRecordBytes;
    QsbDecodeStretchT front = stretch;
    front.nPoints = stretch.nPoints - std::min(nShort, stretch.nPoints);
    if (layout.bDouble) {
        layout.bRaw ? DecodeStretch<true, true>(front) : DecodeStretch<true, false>(front);
    } else {
        layout.bRaw ? DecodeStretch<false, true>(front) : DecodeStretch<false, false>(front);
    }
    QsbDecodeStretchT rest = stretch;
    rest.pSource += front.nPoints * layout.tRecordBytes;
    rest.pPoints += front.nPoints;
    rest.nPoints -= front.nPoints;
    DecodeBaseline(rest);
}

} // namespace SIO

#endif
