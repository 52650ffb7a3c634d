// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One finding per rule, with the number of points and the first of them.
#include "Tools/Qsb/Tool_PointCheck.h"

#include "Tools/Qsb/Tool_BlockPlace.h"
#include "Tools/Qsb/Tool_ScanHeader.h"
#include "Tools/Qsb/Tool_ScanStatistics.h"

#include <fmt/format.h>

namespace Tool {

namespace {

/// A single point of zeros may be meant so; a disk block of them is what an interrupted writer leaves.
constexpr std::uint64_t s_ullZeroTailBytes = 4096;

} // namespace

void CheckPoints(const BlockPlaceC& place, const ScanHeaderC& header, const ScanStatisticsC& statistics,
                 FindingListC& findings)
{
    const auto report = [&](RuleT eRule, const TallyC& tally, const char* szExpected,
                            const char* szReadable) {
        if (tally.ullCount == 0) return;
        findings.Add({.eRule = eRule,
                      .oOffset = header.ullDataOffset + tally.ullFirst * header.ullRecordBytes,
                      .oBlock = place.ullIndex,
                      .strExpected = szExpected,
                      .strFound = fmt::format("{} of {} points, the first one being point {}", tally.ullCount,
                                              statistics.ullPoints, tally.ullFirst),
                      .strReadable = szReadable});
    };
    report(RuleT::PositionNotFinite, statistics.oPositionNotFinite, "finite positions", "all other values");
    report(RuleT::PoseDivision, statistics.oPosedNotFinite, "finite positions after the pose",
           "positions as they are stored");
    report(RuleT::GridIndex, statistics.oOutsideGrid, "indices below the rows and columns of the header", "");
    report(RuleT::OutsideBox, statistics.oOutsideBox, "positions within the bounding box", "");
    report(RuleT::ValueNotFinite, statistics.oIntensityNotFinite, "finite intensities", "all other values");
    report(RuleT::ValueNotFinite, statistics.oNoiseNotFinite, "finite noise levels", "all other values");
    report(RuleT::ValueCut, statistics.oCut, "whole numbers from 0 to 65535",
           "the values as stored, by qsb export; hosts of the library get the low 16 bits of the whole part");

    const std::uint64_t ullTail = statistics.ullZeroTail;
    const bool bAll = ullTail == statistics.ullPoints && ullTail > 1;
    if (bAll || ullTail * header.ullRecordBytes >= s_ullZeroTailBytes) {
        TallyC tail;
        tail.ullCount = ullTail;
        tail.ullFirst = statistics.ullPoints - ullTail;
        report(RuleT::ZeroPoints, tail, "points",
               "the points before them; the others were most likely never written");
    }
}

} // namespace Tool
