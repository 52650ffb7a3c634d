// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Fact by fact.
#include "Tools/Qsb/Tool_ScanFactsCheck.h"

#include "Tools/Qsb/Tool_BlockPlace.h"
#include "Tools/Qsb/Tool_ScanHeader.h"
#include "Tools/Qsb/Tool_ScanStatistics.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

/// How far the columns of a rotation may be from length 1 and from right angles: poses come from text files
/// and from single precision, too.
constexpr double s_dRotationTolerance = 1e-6;

class FactsCheckC
{
public:
    FactsCheckC(const BlockPlaceC& place, const ScanHeaderC& header, FindingListC& findings)
        : m_rPlace(place), m_rHeader(header), m_rFindings(findings)
    {}

    void CheckPose()
    {
        const GMAT::Matrix4C& m = m_rHeader.oInfo.oTransformation;
        for (int i = 0; i < 16; ++i) {
            if (std::isfinite(m.At(i / 4, i % 4))) continue;
            const auto uiTag = Format::s_uiTagMatrix + static_cast<std::uint32_t>(i);
            Report(RuleT::PoseNotFinite, uiTag, "finite numbers",
                   fmt::format("{} in row {}, column {}", m.At(i / 4, i % 4), i / 4 + 1, i % 4 + 1),
                   "positions as they are stored");
            return;
        }
        if (m.At(3, 0) != 0.0 || m.At(3, 1) != 0.0 || m.At(3, 2) != 0.0 || m.At(3, 3) != 1.0) {
            Report(RuleT::PoseLastRow, Format::s_uiTagMatrix + 12, "0 0 0 1",
                   fmt::format("{} {} {} {}", m.At(3, 0), m.At(3, 1), m.At(3, 2), m.At(3, 3)));
        }
        const double dError = RotationError(m);
        if (!(dError <= s_dRotationTolerance)) {
            Report(RuleT::PoseNotRigid, Format::s_uiTagMatrix,
                   "a rotation in the first three rows and columns",
                   fmt::format("a matrix that is off by {:.3g}", dError));
        } else if (Determinant(m) < 0.0) {
            Report(RuleT::PoseNotRigid, Format::s_uiTagMatrix,
                   "a rotation in the first three rows and columns", "a reflection");
        }
    }

    void CheckGrid()
    {
        const auto& auiLargest = m_rHeader.oInfo.auiGridSize;
        const ScanElementC* element = m_rHeader.FindElement(SIO::PD_GRID);
        if ((auiLargest[0] == 0) != (auiLargest[1] == 0)) {
            Report(RuleT::GridSize, Format::s_uiTagGrid0, "two largest indices above 0, or none",
                   fmt::format("{} and {}; readers find no grid", auiLargest[0], auiLargest[1]));
            return;
        }
        if (m_rHeader.HasGridSize() != (element != nullptr)) {
            Report(RuleT::GridMissing, Format::s_uiTagGrid0, "a grid size and grid indices, or neither",
                   element != nullptr ? "indices only" : "a size only");
        }
        if (!m_rHeader.HasGridSize()) return;
        const std::uint64_t ullRows = std::uint64_t{auiLargest[0]} + 1;
        const std::uint64_t ullColumns = std::uint64_t{auiLargest[1]} + 1;
        const bool bShort = element != nullptr && element->uiTypeCode == Format::s_uiTypeUInt16Pair;
        const std::uint64_t ullMost = bShort ? 0x10000 : 0xFFFFFFFF;
        if (ullRows > ullMost || ullColumns > ullMost) {
            Report(RuleT::GridSize, Format::s_uiTagGrid0,
                   fmt::format("at most {} rows and columns{}", ullMost,
                               bShort ? " with indices of 16 bits" : ""),
                   fmt::format("{} x {}", ullRows, ullColumns));
        } else if (m_rHeader.GetPoints() > ullRows * ullColumns) {
            Report(RuleT::GridTooSmall, Format::s_uiTagGrid0,
                   fmt::format("at most one point in each of {} x {} cells", ullRows, ullColumns),
                   fmt::format("{} points", m_rHeader.GetPoints()));
        }
    }

    void CheckBox()
    {
        if (HasBox(m_rHeader)) return;
        std::uint32_t nEntries = 0;
        for (std::uint32_t i = Format::s_uiTagBoxMinX; i < Format::s_uiTagMatrix; ++i)
            nEntries += m_rHeader.HasTag(i);
        if (nEntries < 6) {
            Report(RuleT::BoxMissing, Format::s_uiTagBoxMinX, "entries with the tags 2 to 7",
                   fmt::format("{} of 6", nEntries));
        } else if (!IsEmptyBox()) {
            const SIO::QsbBoundingBoxC& box = m_rHeader.oInfo.oBoundingBox;
            Report(RuleT::BoxInvalid, Format::s_uiTagBoxMinX,
                   "a minimum and, not below it, a maximum on each axis",
                   fmt::format("x {} to {}, y {} to {}, z {} to {}", box.adMin[0], box.adMax[0], box.adMin[1],
                               box.adMax[1], box.adMin[2], box.adMax[2]));
        } else if (m_rHeader.GetPoints() != 0) {
            Report(RuleT::BoxMissing, Format::s_uiTagBoxMinX, "the box of the points",
                   "the box of no points");
        }
    }

    void CheckHeight()
    {
        if (std::isfinite(m_rHeader.oInfo.dInstrumentHeight)) return;
        Report(RuleT::HeightNotFinite, Format::s_uiTagInstrumentHeight, "a finite number",
               fmt::format("{}", m_rHeader.oInfo.dInstrumentHeight));
    }

private:
    /// How far the product of the upper left 3 x 3 part with its transpose is from the identity.
    static double RotationError(const GMAT::Matrix4C& m)
    {
        double dError = 0.0;
        for (int i = 0; i < 3; ++i) {
            for (int j = i; j < 3; ++j) {
                const double d = m.At(0, i) * m.At(0, j) + m.At(1, i) * m.At(1, j) + m.At(2, i) * m.At(2, j);
                const double dOff = std::fabs(d - (i == j ? 1.0 : 0.0));
                // An overflow gives NaN, which must not hide.
                if (!(dOff <= dError)) dError = dOff;
                if (std::isnan(dError)) return dError;
            }
        }
        return dError;
    }

    static double Determinant(const GMAT::Matrix4C& m)
    {
        return m.At(0, 0) * (m.At(1, 1) * m.At(2, 2) - m.At(1, 2) * m.At(2, 1)) -
               m.At(0, 1) * (m.At(1, 0) * m.At(2, 2) - m.At(1, 2) * m.At(2, 0)) +
               m.At(0, 2) * (m.At(1, 0) * m.At(2, 1) - m.At(1, 1) * m.At(2, 0));
    }

    /// The box that no point has entered yet.
    bool IsEmptyBox() const
    {
        const SIO::QsbBoundingBoxC& box = m_rHeader.oInfo.oBoundingBox;
        const SIO::QsbBoundingBoxC empty;
        return std::equal(box.adMin, box.adMin + 3, empty.adMin) &&
               std::equal(box.adMax, box.adMax + 3, empty.adMax);
    }

    /// Reports at the entry with `uiTag`, or at the block when it has none.
    void Report(RuleT eRule, std::uint32_t uiTag, const std::string& expected, const std::string& found,
                const std::string& readable = {})
    {
        const SIO::QsbHeaderEntryC* entry = m_rPlace.rBlock.FindEntry(uiTag);
        m_rFindings.Add({.eRule = eRule,
                         .eSeverity = m_rPlace.MostSevere(),
                         .oOffset = entry ? m_rPlace.OffsetOf(*entry) : m_rPlace.rBlock.GetOffset(),
                         .oBlock = m_rPlace.ullIndex,
                         .strExpected = expected,
                         .strFound = found,
                         .strReadable = readable});
    }

    const BlockPlaceC& m_rPlace;
    const ScanHeaderC& m_rHeader;
    FindingListC& m_rFindings;
};

} // namespace

void CheckScanFacts(const BlockPlaceC& place, const ScanHeaderC& header, FindingListC& findings)
{
    FactsCheckC check(place, header, findings);
    check.CheckPose();
    check.CheckGrid();
    check.CheckBox();
    check.CheckHeight();
}

} // namespace Tool
