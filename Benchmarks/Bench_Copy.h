// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Plain copies between stored points and records: every byte of the one is read and every byte of the other
// is written, in as few loads and stores as that takes, and no number is looked at. Loads reach up to 2 bytes
// beyond the last stored point, stores likewise.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <emmintrin.h>

namespace Bench {

inline constexpr std::size_t s_nPointBytes = 40;
inline constexpr std::size_t s_nSlackBytes = 16;

inline __m128i Load16(const char* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

inline void Store16(char* p, __m128i value)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), value);
}

inline void Store8(char* p, __m128i value)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), value);
}

/// From stored points of n bytes to records.
template<std::size_t n>
void CopyToRecords(const char* pStored, std::size_t nPoints, char* pRecords)
{
    for (std::size_t i = 0; i < nPoints; ++i, pStored += n, pRecords += s_nPointBytes) {
        const __m128i first = Load16(pStored);
        const __m128i second = n > 16 ? Load16(pStored + (n > 32 ? 16 : n - 16)) : first;
        const __m128i third =
            n > 32 ? _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pStored + 32)) : first;
        Store16(pRecords, first);
        Store16(pRecords + 16, second);
        Store8(pRecords + 32, third);
    }
}

/// From records to stored points of n bytes; all 40 bytes of a record are read.
template<std::size_t n>
void CopyToStored(const char* pRecords, std::size_t nPoints, char* pStored)
{
    for (std::size_t i = 0; i < nPoints; ++i, pStored += n, pRecords += s_nPointBytes) {
        const __m128i first = Load16(pRecords);
        const __m128i second = Load16(pRecords + 16);
        const __m128i third = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pRecords + 32));
        if constexpr (n > 32) {
            Store16(pStored, first);
            Store16(pStored + 16, second);
            Store8(pStored + 32, third);
        } else if constexpr (n > 16) {
            Store16(pStored, first);
            Store16(pStored + n - 16, _mm_or_si128(second, third));
        } else {
            Store16(pStored, _mm_or_si128(first, _mm_or_si128(second, third)));
        }
    }
}

/// Calls `body` with the size of a stored point as a constant.
template<typename BodyT>
void WithRecordBytes(std::size_t nRecordBytes, const BodyT& body)
{
    switch (nRecordBytes) {
    case 14:
        return body.template operator()<14>();
    case 15:
        return body.template operator()<15>();
    case 16:
        return body.template operator()<16>();
    case 18:
        return body.template operator()<18>();
    case 24:
        return body.template operator()<24>();
    case 40:
        return body.template operator()<40>();
    default:
        std::abort(); // there is no such layout
    }
}

} // namespace Bench
