// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Encoding with AVX2. The sixteen bytes behind the position are put in place by one shuffle. Vector stores
// reach beyond a stored point, into the next one, which is stored after it; they never reach beyond the
// stretch: its last points are left to the portable kernel.
#include "Sio/Sio_QsbEncodeKernels.h"

#if defined(__x86_64__)

#include <algorithm>
#include <immintrin.h>

// On the functions rather than on the file, so that no inline function of a header is compiled for AVX2 and
// then chosen by the linker for everyone.
#define SIO_AVX2 __attribute__((target("avx2")))

namespace SIO {

namespace {

/// Bytes that the vector stores write from the beginning of a stored point.
constexpr std::size_t Reach(std::size_t nPositionBytes)
{
    return nPositionBytes + s_nTailBytes;
}

/// Stores a position, and anything in what is left of the vector.
template<bool bDouble>
SIO_AVX2 inline void StorePosition(const char* pSource, char* pTarget)
{
    const auto* const pNumbers = reinterpret_cast<const double*>(pSource);
    if constexpr (bDouble) {
        _mm256_storeu_pd(reinterpret_cast<double*>(pTarget), _mm256_loadu_pd(pNumbers));
    } else {
        // Not four at once: the fourth would be the tail, and as a number that may be one which narrows to a
        // denormal. Some processors take a hundred times as long for those.
        const __m128 xy = _mm_cvtpd_ps(_mm_loadu_pd(pNumbers));
        const __m128 z = _mm_cvtsd_ss(_mm_setzero_ps(), _mm_load_sd(pNumbers + 2));
        _mm_storeu_ps(reinterpret_cast<float*>(pTarget), _mm_movelh_ps(xy, z));
    }
}

template<bool bDouble>
SIO_AVX2 void EncodeStretch(const QsbEncodeStretchT& stretch)
{
    constexpr std::size_t nPositionBytes = (bDouble ? sizeof(double) : sizeof(float)) * 3;
    const auto* const pShuffle = reinterpret_cast<const __m128i*>(stretch.pLayout->aucEncodeShuffle);
    const auto* const pConstant = reinterpret_cast<const __m128i*>(stretch.pLayout->aucEncodeConstant);
    const __m128i shuffle = _mm_loadu_si128(pShuffle);
    const __m128i constant = _mm_loadu_si128(pConstant);
    const std::size_t nRecordBytes = stretch.pLayout->tRecordBytes;
    const char* pSource = reinterpret_cast<const char*>(stretch.pPoints);
    char* pTarget = stretch.pDestination;
    for (std::size_t i = 0; i < stretch.nPoints; ++i) {
        const __m128i tail = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSource + s_nTailOffset));
        StorePosition<bDouble>(pSource, pTarget);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pTarget + nPositionBytes),
                         _mm_or_si128(_mm_shuffle_epi8(tail, shuffle), constant));
        pSource += sizeof(QsbPointC);
        pTarget += nRecordBytes;
    }
}

} // namespace

std::size_t EncodeAvx2(const QsbEncodeStretchT& stretch)
{
    const QsbRecordMovesT& layout = *stretch.pLayout;
    // Points whose stores would pass the end of the stretch: those that begin less than the reach before it.
    const std::size_t nShort = (Reach(layout.tPositionBytes) - 1) / layout.tRecordBytes;
    QsbEncodeStretchT front = stretch;
    front.nPoints -= std::min(nShort, stretch.nPoints);
    layout.bDouble ? EncodeStretch<true>(front) : EncodeStretch<false>(front);
    QsbEncodeStretchT rest = stretch;
    rest.pPoints += front.nPoints;
    rest.nPoints -= front.nPoints;
    rest.pDestination += front.nPoints * layout.tRecordBytes;
    EncodeBaseline(rest);
    return front.nPoints;
}

} // namespace SIO

#endif
