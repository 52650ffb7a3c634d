// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A loop for each word of a field, tile by tile, so that a tile of both forms stays in the first cache.
#include "Tools/Qsb/Tool_RecordMoves.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Tool {

namespace {

constexpr std::size_t s_nTileRecords = 256;
constexpr std::size_t s_nLargestWord = 16;

/// One word of each record.
template<std::size_t nBytes>
void MoveWords(const char* pSource, std::size_t nSourceStride, char* pTarget, std::size_t nTargetStride,
               std::size_t nRecords)
{
    for (std::size_t i = 0; i < nRecords; ++i)
        std::memcpy(pTarget + i * nTargetStride, pSource + i * nSourceStride, nBytes);
}

using MoveWordsT = void (*)(const char*, std::size_t, char*, std::size_t, std::size_t);

MoveWordsT WordsOf(std::size_t nBytes)
{
    switch (nBytes) {
    case 1:
        return &MoveWords<1>;
    case 2:
        return &MoveWords<2>;
    case 4:
        return &MoveWords<4>;
    case 8:
        return &MoveWords<8>;
    default:
        return &MoveWords<s_nLargestWord>;
    }
}

} // namespace

void RecordMovesC::Add(std::size_t nSource, std::size_t nTarget, std::size_t nBytes)
{
    if (!m_vecMoves.empty()) {
        MoveT& last = m_vecMoves.back();
        if (last.nSource + last.nBytes == nSource && last.nTarget + last.nBytes == nTarget) {
            last.nBytes += nBytes;
            return;
        }
    }
    m_vecMoves.push_back({nSource, nTarget, nBytes});
}

void RecordMovesC::Move(const char* pSource, std::size_t nSourceStride, char* pTarget,
                        std::size_t nTargetStride, std::size_t nRecords) const
{
    for (std::size_t nDone = 0; nDone < nRecords; nDone += s_nTileRecords) {
        const std::size_t nPart = std::min(s_nTileRecords, nRecords - nDone);
        for (const MoveT& move : m_vecMoves) {
            const char* const pFrom = pSource + nDone * nSourceStride + move.nSource;
            char* const pTo = pTarget + nDone * nTargetStride + move.nTarget;
            const std::size_t nWord = std::min(std::bit_floor(move.nBytes), s_nLargestWord);
            const MoveWordsT moveWords = WordsOf(nWord);
            // The last word ends where the field ends and may move some bytes once more.
            for (std::size_t i = 0; i < move.nBytes; i += nWord) {
                const std::size_t nAt = std::min(i, move.nBytes - nWord);
                moveWords(pFrom + nAt, nSourceStride, pTo + nAt, nTargetStride, nPart);
            }
        }
    }
}

} // namespace Tool
