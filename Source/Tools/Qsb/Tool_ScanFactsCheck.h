// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Whether what a header says of its scan makes sense: pose, grid, bounding box, instrument height. None of it
// keeps the reader from reading. Works in memory.
#pragma once

namespace Tool {

class FindingListC;
struct BlockPlaceC;
struct ScanHeaderC;

void CheckScanFacts(const BlockPlaceC& place, const ScanHeaderC& header, FindingListC& findings);

} // namespace Tool
