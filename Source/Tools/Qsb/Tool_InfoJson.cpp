// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The JSON, key by key.
#include "Tools/Qsb/Tool_CheckReport.h"
#include "Tools/Qsb/Tool_Encodings.h"
#include "Tools/Qsb/Tool_FormatNames.h"
#include "Tools/Qsb/Tool_InfoReport.h"
#include "Tools/Qsb/Tool_ScanCheck.h"

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;

bool HasAnyTag(const ScanHeaderC& header, std::uint32_t uiFirst, std::uint32_t uiLast)
{
    for (std::uint32_t i = uiFirst; i <= uiLast; ++i) {
        if (header.HasTag(i)) return true;
    }
    return false;
}

JsonT BlocksJson(const ScanCheckC& check, std::uint64_t ullMaxBlocks)
{
    JsonT blocks = JsonT::array();
    check.oChain.oBlocks.ForEach([&](const SIO::QsbBlockC& block, std::uint64_t ullIndex) {
        if (blocks.size() == ullMaxBlocks) return false;
        JsonT json;
        json["index"] = ullIndex;
        json["count"] = block.GetRunLength();
        json["offset"] = block.GetOffset();
        json["identifier"] = block.GetId();
        json["kind"] = NameOfBlock(block.GetId());
        json["header_bytes"] = block.GetHeaderBytes();
        json["data_bytes"] = block.GetDataBytes();
        blocks.push_back(std::move(json));
        return true;
    });
    return blocks;
}

JsonT ElementsJson(const ScanHeaderC& header)
{
    JsonT elements = JsonT::array();
    for (const ScanElementC& element : header.vecShown) {
        JsonT json;
        json["kind"] = NameOfKind(element.uiKind);
        json["encoding"] = EncodingName(element.uiKind, element.uiTypeCode);
        json["type_code"] = element.uiTypeCode;
        json["bytes"] = element.nBytes;
        elements.push_back(std::move(json));
    }
    return elements;
}

JsonT GridJson(const ScanHeaderC& header)
{
    if (!HasAnyTag(header, Format::s_uiTagGrid0, Format::s_uiTagGrid1)) return nullptr;
    const auto& auiStored = header.oInfo.auiGridSize;
    JsonT json;
    json["stored"] = {auiStored[0], auiStored[1]};
    json["rows"] = header.HasGridSize() ? JsonT(std::uint64_t{auiStored[0]} + 1) : JsonT(nullptr);
    json["columns"] = header.HasGridSize() ? JsonT(std::uint64_t{auiStored[1]} + 1) : JsonT(nullptr);
    return json;
}

JsonT PoseJson(const ScanHeaderC& header)
{
    if (!HasAnyTag(header, Format::s_uiTagMatrix, Format::s_uiTagMatrixLast)) return nullptr;
    JsonT json = JsonT::array();
    for (int i = 0; i < 16; ++i)
        json.push_back(header.oInfo.oTransformation.At(i / 4, i % 4));
    return json;
}

JsonT BoxJson(const double (&adMin)[3], const double (&adMax)[3])
{
    JsonT json;
    json["min"] = {adMin[0], adMin[1], adMin[2]};
    json["max"] = {adMax[0], adMax[1], adMax[2]};
    return json;
}

JsonT ScanJson(const ScanCheckC& check)
{
    if (check.pHeader == nullptr) return nullptr;
    const ScanHeaderC& header = *check.pHeader;
    JsonT json;
    json["block"] = *check.oReadBlock;
    json["points"] = check.CanReadPoints() ? JsonT(header.GetPoints()) : JsonT(nullptr);
    json["points_readable"] = check.GetReadable();
    json["point_bytes"] = check.CanReadPoints() ? JsonT(header.ullRecordBytes) : JsonT(nullptr);
    json["element_count"] = header.ullElements;
    json["elements"] = ElementsJson(header);
    json["grid"] = GridJson(header);
    const bool bHeight = header.HasTag(Format::s_uiTagInstrumentHeight);
    json["instrument_height"] = bHeight ? JsonT(header.oInfo.dInstrumentHeight) : JsonT(nullptr);
    json["pose"] = PoseJson(header);
    const bool bBox = HasAnyTag(header, Format::s_uiTagBoxMinX, Format::s_uiTagMatrix - 1);
    json["bounding_box"] =
        bBox ? BoxJson(header.oInfo.oBoundingBox.adMin, header.oInfo.oBoundingBox.adMax) : JsonT(nullptr);
    return json;
}

JsonT RangeJson(const RangeC& range)
{
    if (range.IsEmpty()) return nullptr;
    JsonT json;
    json["min"] = range.dMin;
    json["max"] = range.dMax;
    return json;
}

JsonT BoxJson(const RangeC (&aRanges)[3])
{
    if (aRanges[0].IsEmpty()) return nullptr;
    return BoxJson({aRanges[0].dMin, aRanges[1].dMin, aRanges[2].dMin},
                   {aRanges[0].dMax, aRanges[1].dMax, aRanges[2].dMax});
}

JsonT StatisticsJson(const ScanCheckC& check)
{
    if (check.pStatistics == nullptr) return nullptr;
    const ScanStatisticsC& statistics = *check.pStatistics;
    JsonT json;
    json["points"] = statistics.ullPoints;
    json["box_stored"] = BoxJson(statistics.aStored);
    json["box_posed"] = BoxJson(statistics.aPosed);
    json["intensity"] = RangeJson(statistics.oIntensity);
    json["noise"] = RangeJson(statistics.oNoise);
    json["row"] = RangeJson(statistics.aGrid[0]);
    json["column"] = RangeJson(statistics.aGrid[1]);
    json["positions_not_finite"] = statistics.oPositionNotFinite.ullCount;
    json["posed_positions_not_finite"] = statistics.oPosedNotFinite.ullCount;
    json["positions_outside_box"] = statistics.oOutsideBox.ullCount;
    json["intensities_not_finite"] = statistics.oIntensityNotFinite.ullCount;
    json["noise_not_finite"] = statistics.oNoiseNotFinite.ullCount;
    json["grid_indices_outside"] = statistics.oOutsideGrid.ullCount;
    return json;
}

} // namespace

JsonT InfoJson(const std::string& name, const ScanCheckC& check, std::uint64_t ullMaxBlocks)
{
    JsonT json = NewJsonDocument("info");
    json["file"] = name;
    json["status"] = check.oFindings.HasErrors() ? "damaged" : "ok";
    json["size_bytes"] = check.ullFileSize;
    json["version"] = check.oVersion ? JsonT(NameOfVersion(*check.oVersion)) : JsonT(nullptr);
    json["version_number"] = check.oVersion ? JsonT(*check.oVersion) : JsonT(nullptr);
    json["block_count"] = check.oChain.oBlocks.GetCount();
    json["blocks"] = BlocksJson(check, ullMaxBlocks);
    json["scan"] = ScanJson(check);
    json["statistics"] = StatisticsJson(check);
    json["errors"] = JsonT::array();
    for (const FindingC& finding : check.oFindings.GetKept()) {
        if (finding.eSeverity == SeverityT::Error) json["errors"].push_back(FindingJson(finding));
    }
    return json;
}

} // namespace Tool
