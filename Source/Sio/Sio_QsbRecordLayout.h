// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the elements of a stored point lie and which of them are mere bytes: what the batch kernels need to
// know of a point definition. An integer element decodes to its own bytes, widened with zeros, and encodes by
// dropping the upper ones; positions are computed; float elements, and all of a kind that occurs more than
// once, are left to loops of their own, but for what a shuffle encodes as well. Plain data, compiled once and
// never changed.
#pragma once

#include "Sio/Sio_QsbPoint.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SIO {

class PointDefinitionContainerI;

/// Bytes of a record behind the position: colour, alignment, intensity, level of noise, grid indices.
inline constexpr std::size_t s_nTailBytes = 16;
inline constexpr std::size_t s_nTailOffset = offsetof(QsbPointC, red);
static_assert(s_nTailOffset + s_nTailBytes == sizeof(QsbPointC));

/// What is stored as the fourth channel of a colour, which records do not have.
inline constexpr std::uint8_t s_ucFourthChannel = 255;

/// An element whose bytes are moved. Absent when it has no bytes.
struct QsbMovedElementT
{
    std::uint8_t ucBytes = 0;
    std::uint8_t ucOffset = 0; ///< behind the position
};

/// An element that takes a loop.
struct QsbLoopElementT
{
    std::uint32_t uiKind;
    std::uint32_t uiTypeCode;
    std::size_t tOffset; ///< in the stored point
    bool bShuffled;      ///< the shuffle of encoding stores it already
};

/// What the kernels need.
struct QsbRecordMovesT
{
    std::size_t tRecordBytes = 0; ///< 0: the definition has no layout that kernels can handle
    std::size_t tPositionBytes = 0;
    bool bDouble = false; ///< positions are doubles, else floats
    bool bRaw = false;    ///< positions are not transformed when decoded

    QsbMovedElementT oIntensity;
    QsbMovedElementT oNoise;
    QsbMovedElementT oGrid; ///< both indices
    QsbMovedElementT oColor;

    /// The moves once more, as a byte shuffle of the 16 bytes behind the position: for each byte of a
    /// record's tail the source index, or 0x80 for zero; and whether it is written at all (0xFF) or kept
    /// (0x00).
    std::uint8_t aucShuffle[s_nTailBytes] = {};
    std::uint8_t aucWritten[s_nTailBytes] = {};

    /// The moves of encoding, of a kind that occurs more than once as well: for each of the 16 bytes behind a
    /// stored position the index in a record's tail, or 0x80 for zero; and what is the same in every point
    /// (0xFF in a colour's fourth channel, else zero).
    std::uint8_t aucEncodeShuffle[s_nTailBytes] = {};
    std::uint8_t aucEncodeConstant[s_nTailBytes] = {};
};

struct QsbRecordLayoutT : QsbRecordMovesT
{
    std::vector<QsbLoopElementT> vecLoops; ///< in the order of the definition
};

/// The layout of `definition`; one without size when the definition does not begin with its only position,
/// has very many elements, or is of an unknown class or has elements that are.
QsbRecordLayoutT MakeRecordLayout(const PointDefinitionContainerI& definition);

} // namespace SIO
