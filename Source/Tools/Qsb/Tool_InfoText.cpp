// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The text, section by section.
#include "Tools/Qsb/Tool_FormatNames.h"
#include "Tools/Qsb/Tool_InfoReport.h"
#include "Tools/Qsb/Tool_ScanCheck.h"
#include "Tools/Qsb/Tool_TextTable.h"

#include <fmt/format.h>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

constexpr std::size_t s_nMaxElements = 32; ///< a hostile header has millions

std::string VersionText(const ScanCheckC& check)
{
    if (!check.oVersion) return "none";
    return fmt::format("{} ({:#010x})", NameOfVersion(*check.oVersion), *check.oVersion);
}

std::string BlocksText(const ScanCheckC& check, std::uint64_t ullMaxBlocks)
{
    TextTableC table("rrllrrl");
    table.AddRow({"block", "offset", "identifier", "", "header", "data"});
    std::uint64_t ullListed = 0;
    std::uint64_t ullRows = 0;
    check.oChain.oBlocks.ForEach([&](const SIO::QsbBlockC& block, std::uint64_t ullIndex) {
        if (++ullRows > ullMaxBlocks) return false;
        std::string remark;
        if (ullIndex == check.oReadBlock) remark = "<- the scan";
        if (block.GetRunLength() > 1) remark = fmt::format("{} of these", block.GetRunLength());
        if (block.GetEndOffset() > check.ullFileSize) remark += remark.empty() ? "cut off" : ", cut off";
        table.AddRow({fmt::format("{}", ullIndex), fmt::format("{}", block.GetOffset()),
                      fmt::format("{:#010x}", block.GetId()), NameOfBlock(block.GetId()),
                      fmt::format("{}", block.GetHeaderBytes()), fmt::format("{}", block.GetDataBytes()),
                      remark});
        ullListed = ullIndex + block.GetRunLength();
        return true;
    });
    std::string text = fmt::format("\nBlocks: {}\n", check.oChain.oBlocks.GetCount());
    if (ullListed != 0 || ullMaxBlocks == 0) text += table.ToText("  ");
    const std::uint64_t ullMore = check.oChain.oBlocks.GetCount() - ullListed;
    if (ullMore != 0) text += fmt::format("  {} more; --blocks N lists N\n", ullMore);
    return text;
}

/// The label before the first line, blanks before the others.
std::string Labelled(const char* szLabel, const std::string& lines)
{
    std::string text;
    std::size_t nBegin = 0;
    while (nBegin < lines.size()) {
        const std::size_t nEnd = lines.find('\n', nBegin);
        text +=
            fmt::format("  {:<17}  {}\n", nBegin == 0 ? szLabel : "", lines.substr(nBegin, nEnd - nBegin));
        nBegin = nEnd == std::string::npos ? lines.size() : nEnd + 1;
    }
    return text;
}

std::string PointsText(const ScanCheckC& check)
{
    const ScanHeaderC& header = *check.pHeader;
    if (!header.HasRecord()) return "not known, since the encoding of the positions is not known";
    if (!check.CanReadPoints()) return "not known, since the header is not whole";
    const std::uint64_t ullReadable = check.GetReadable();
    if (ullReadable == header.GetPoints()) return fmt::format("{}", header.GetPoints());
    return fmt::format("{}, of which the file holds {}", header.GetPoints(), ullReadable);
}

std::string ElementsText(const ScanHeaderC& header)
{
    TextTableC table("llr");
    std::size_t n = 0;
    for (const ScanElementC& element : header.vecShown) {
        if (n++ == s_nMaxElements) break;
        table.AddRow({NameOfKind(element.uiKind), NameOfElement(element.uiKind, element.uiTypeCode),
                      fmt::format("{} byte{}", element.nBytes, element.nBytes == 1 ? " " : "s")});
    }
    std::string text = table.ToText("");
    if (n > s_nMaxElements) text += fmt::format("{} more\n", header.ullElements - s_nMaxElements);
    return text.empty() ? "none" : text;
}

std::string GridText(const ScanHeaderC& header)
{
    const auto& auiStored = header.oInfo.auiGridSize;
    if (!header.HasTag(Format::s_uiTagGrid0) && !header.HasTag(Format::s_uiTagGrid1)) return "not stored";
    const std::string stored = fmt::format("stored as largest indices {} and {}", auiStored[0], auiStored[1]);
    if (!header.HasGridSize()) return fmt::format("none, {}", stored);
    return fmt::format("{} rows x {} columns, {}", std::uint64_t{auiStored[0]} + 1,
                       std::uint64_t{auiStored[1]} + 1, stored);
}

bool HasPose(const ScanHeaderC& header)
{
    for (std::uint32_t i = Format::s_uiTagMatrix; i <= Format::s_uiTagMatrixLast; ++i) {
        if (header.HasTag(i)) return true;
    }
    return false;
}

std::string PoseText(const ScanHeaderC& header)
{
    if (!HasPose(header)) return "not stored";
    TextTableC table("rrrr");
    const GMAT::Matrix4C& m = header.oInfo.oTransformation;
    for (int i = 0; i < 4; ++i) {
        table.AddRow({fmt::format("{}", m.At(i, 0)), fmt::format("{}", m.At(i, 1)),
                      fmt::format("{}", m.At(i, 2)), fmt::format("{}", m.At(i, 3))});
    }
    return table.ToText("");
}

void AddRange(TextTableC& table, const std::string& name, double dMin, double dMax)
{
    table.AddRow({name, fmt::format("{}", dMin), "to", fmt::format("{}", dMax)});
}

std::string BoxText(const ScanHeaderC& header)
{
    bool bAny = false;
    for (std::uint32_t i = Format::s_uiTagBoxMinX; i < Format::s_uiTagMatrix; ++i)
        bAny = bAny || header.HasTag(i);
    if (!bAny) return "not stored";
    TextTableC table("lrlr");
    for (std::size_t i = 0; i < 3; ++i) {
        AddRange(table, std::string(1, "xyz"[i]), header.oInfo.oBoundingBox.adMin[i],
                 header.oInfo.oBoundingBox.adMax[i]);
    }
    return table.ToText("");
}

std::string HeightText(const ScanHeaderC& header)
{
    if (!header.HasTag(Format::s_uiTagInstrumentHeight)) return "not stored";
    return fmt::format("{}", header.oInfo.dInstrumentHeight);
}

std::string ScanText(const ScanCheckC& check)
{
    const ScanHeaderC& header = *check.pHeader;
    std::string text = fmt::format("\nScan, in block {}\n", *check.oReadBlock);
    text += Labelled("points", PointsText(check));
    if (check.CanReadPoints())
        text += Labelled("size of a point", fmt::format("{} bytes", header.ullRecordBytes));
    text += Labelled("elements", ElementsText(header));
    text += Labelled("grid", GridText(header));
    text += Labelled("instrument height", HeightText(header));
    text += Labelled("pose", PoseText(header));
    text += Labelled("bounding box", BoxText(header));
    return text;
}

std::string StatisticsText(const ScanStatisticsC& statistics)
{
    TextTableC ranges("lrlr");
    const auto addRange = [&](const std::string& name, const RangeC& range) {
        if (!range.IsEmpty()) AddRange(ranges, name, range.dMin, range.dMax);
    };
    for (std::size_t i = 0; i < 3; ++i)
        addRange(fmt::format("{} as stored", "xyz"[i]), statistics.aStored[i]);
    for (std::size_t i = 0; i < 3; ++i)
        addRange(fmt::format("{} with pose", "xyz"[i]), statistics.aPosed[i]);
    addRange("intensity", statistics.oIntensity);
    addRange("noise", statistics.oNoise);
    addRange("row", statistics.aGrid[0]);
    addRange("column", statistics.aGrid[1]);

    TextTableC tallies("lr");
    const auto addTally = [&](const char* szName, const TallyC& tally) {
        tallies.AddRow({szName, fmt::format("{}", tally.ullCount)});
    };
    addTally("positions that are not finite", statistics.oPositionNotFinite);
    addTally("positions that the pose makes so", statistics.oPosedNotFinite);
    addTally("positions outside the bounding box", statistics.oOutsideBox);
    addTally("intensities that are not finite", statistics.oIntensityNotFinite);
    addTally("noise levels that are not finite", statistics.oNoiseNotFinite);
    addTally("grid indices outside the grid", statistics.oOutsideGrid);
    return fmt::format("\nThe {} points that were read\n", statistics.ullPoints) + ranges.ToText("  ") +
           "\n" + tallies.ToText("  ");
}

} // namespace

std::string InfoText(const std::string& name, const ScanCheckC& check, std::uint64_t ullMaxBlocks)
{
    std::string text = fmt::format("{}\n  size     {} byte{}\n  version  {}\n", name, check.ullFileSize,
                                   check.ullFileSize == 1 ? "" : "s", VersionText(check));
    text += BlocksText(check, ullMaxBlocks);
    if (check.pHeader != nullptr) text += ScanText(check);
    if (check.pStatistics != nullptr) text += StatisticsText(*check.pStatistics);
    return text;
}

} // namespace Tool
