// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The rules for the points themselves, judged by what a look at all of them has counted. None of them keeps
// the reader from reading.
#pragma once

namespace Tool {

class FindingListC;
class ScanStatisticsC;
struct BlockPlaceC;
struct ScanHeaderC;

void CheckPoints(const BlockPlaceC& place, const ScanHeaderC& header, const ScanStatisticsC& statistics,
                 FindingListC& findings);

} // namespace Tool
