// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How blocks are packed in memory. Blocks of a file are much alike, so most are told by reference to an
// earlier one, the model, of which 31 are at hand at a time, each at a number of its own. A block is
//
//     a byte: the number of its model, and three flags
//     with the flag s_uiOtherId: 4 bytes, its identifier; otherwise it has the model's
//     with the flag s_uiOtherData: 4 bytes, how many bytes of data it has; otherwise as many as the model
//     with the flag s_uiOtherValues: 8 bytes for each entry, its value; otherwise they are the model's
//
// and has the types and the tags of its model in any case. Where there is no model that fits:
//
//     s_uiNewModel, the number, and head and entries as they stand in the file
//
// which from then on is the model of that number. Blocks that are like two models in turn, or like one, but
// for their identifiers:
//
//     s_uiIds, the number of the first model, that of the second, which may be the same, how many blocks in
//     one byte, and 4 bytes for each, its identifier
//
// These have no entries. Blocks that are equal to the one before them, which has the data and the values of
// its model:
//
//     s_uiRepeat and how many, seven bits to a byte, the lowest first, the highest bit set but in the last
//
// Equal blocks at the end are not written at all: how many blocks there are is known beside the bytes. Empty
// blocks that are equal and follow one another are always told in this way.
#pragma once

#include "Sio/Sio_QsbFileFormat.h"

#include <cstddef>
#include <cstdint>

namespace SIO::QsbPackedCode {

inline constexpr std::size_t s_nModels = 31;
inline constexpr std::uint8_t s_uiNumberMask = 0x1F;
inline constexpr std::uint8_t s_uiOtherId = 0x20;
inline constexpr std::uint8_t s_uiOtherData = 0x40;
inline constexpr std::uint8_t s_uiOtherValues = 0x80;
inline constexpr std::uint8_t s_uiNewModel = 0x1F; ///< where the number of a model would be
inline constexpr std::uint8_t s_uiRepeat = 0x3F;   ///< likewise
inline constexpr std::uint8_t s_uiIds = 0x5F;      ///< likewise
inline constexpr std::size_t s_nIdsHeadBytes = 4;
inline constexpr std::size_t s_nMostIds = 255;

inline constexpr std::size_t s_nTypeAndTagBytes = 8;
inline constexpr std::size_t s_nValueBytes = 8;
static_assert(s_nTypeAndTagBytes + s_nValueBytes == QsbFormat::s_nEntryBytes);

/// The longest header of a block that is packed.
inline constexpr std::size_t s_nMostHeaderBytes = 4096;

/// A chunk in which so many bytes have been written takes no other code.
inline constexpr std::size_t s_nChunkBytes = 8192;

/// The longest of the codes above: a new model, behind a repetition.
inline constexpr std::size_t s_nMostCodeBytes = 11 + 2 + QsbFormat::s_nBlockHeadBytes + s_nMostHeaderBytes;

static_assert(s_nIdsHeadBytes + 4 * s_nMostIds <= s_nMostCodeBytes);

} // namespace SIO::QsbPackedCode
