// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The rules for the entries of a block's header, one by one and together. Works on block records in memory.
#pragma once

namespace Tool {

class FindingListC;
struct BlockPlaceC;
struct ScanHeaderC;

/// The file header block at the head of the file.
void CheckFileHeader(const BlockPlaceC& place, FindingListC& findings);

/// A point-cloud block, of which `header` is what can be understood.
void CheckPointCloudEntries(const BlockPlaceC& place, const ScanHeaderC& header, FindingListC& findings);

} // namespace Tool
