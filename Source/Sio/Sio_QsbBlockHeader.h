// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The header entries of a point-cloud block and what they mean: from entries to strategy data when a block is
// read, from a strategy to entries when one is created. Works on block records in memory only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace SIO {

/// Most elements of one stored point, the position included: far beyond any scan, and few enough that a
/// header of millions of them takes no memory.
inline constexpr std::size_t s_nMaxPointElements = 65536;

class PointDefinitionContainerI;
class QsbBlockC;
class QsbHeaderEntryC;
class QsbStrategyDataC;
struct QsbBoundingBoxC;
struct QsbScanInfoC;

/// The kind of element (PointDataKindT) that one of the tags 100 to 104 stands for.
std::uint32_t KindOfTag(std::uint32_t tag);

/// Takes the value of an entry with a tag from 2 to 26 into `info`; other entries change nothing.
void TakeHeaderValue(const QsbHeaderEntryC& entry, QsbScanInfoC& info);

/// The number of points that an entry states, by its type code; other type codes state none.
std::uint64_t PointCountOf(const QsbHeaderEntryC& entry);

/// Fills `data` from the header of `block`. `bApplyTransformation` chooses between position elements that map
/// positions and raw ones. False when a tag is above the largest there is, the position has an unknown
/// encoding, or a counted block claims more points than it has room for. Elements that cannot be made are
/// reported and left out; of many such, the first few and then one summary.
[[nodiscard]] bool InterpretBlockHeader(const QsbBlockC& block, bool bApplyTransformation,
                                        QsbStrategyDataC& data);

/// Adds the entries that describe `info` and the elements of `poPointDefinitionContainer` to `block`. Stops
/// with false at an entry that cannot be added, and at an element of unknown kind; null in either place is
/// reported.
[[nodiscard]] bool AddBlockHeader(QsbBlockC& block, const QsbScanInfoC& info,
                                  const PointDefinitionContainerI* poPointDefinitionContainer);

/// Replaces the values of the bounding box entries that `block` has.
void ChangeBoundingBox(QsbBlockC& block, const QsbBoundingBoxC& box);

/// Whether the entry that counts the points of `block` (if it has one that counts) can hold `ullPoints`.
bool CanChangePointCount(const QsbBlockC& block, std::uint64_t ullPoints);

/// Raises the count of a counted block to `ullPoints`; blocks that count nothing stay as they are.
void ChangePointCount(QsbBlockC& block, std::uint64_t ullPoints);

} // namespace SIO
