// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Turns the points of a scan file into columns of numbers for interchange files, batch by batch in constant
// memory: every element in the precision in which it is stored, positions as they are stored unless the pose
// is to be applied. Knows nothing of the forms they are written in. One thread at a time.
#pragma once

#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_RecordMoves.h"
#include "Tools/Qsb/Tool_Report.h"
#include "Tools/Qsb/Tool_ScanReader.h"
#include "Tools/Qsb/Tool_ScanValue.h"
#include "Tools/Qsb/Tool_ValueConversion.h"

#include <optional>
#include <vector>

namespace Tool {

class PointSinkI;

struct ExportChoicesC
{
    bool bApplyPose = false;
    std::optional<NumberTypeT> oPosition; ///< Float or Double; none: as stored, Double with the pose applied
};

class ScanExportC
{
public:
    /// `reader` must outlive this.
    ScanExportC(ScanReaderC& reader, const ExportChoicesC& choices);

    /// The fields, how many points can be read, and what stands beside them.
    const RawHeaderC& GetHeader() const noexcept { return m_oHeader; }

    /// Whether the file holds fewer points than it should.
    bool IsTorn() const { return m_oHeader.ullPoints != m_rReader.GetNumberOfPoints(); }

    /// Reads the next points into one column per field. Returns how many, 0 at the end. ToolErrorC with
    /// s_iDamaged when they cannot be read after all.
    std::size_t Read(std::vector<std::vector<double>>& columns);

    /// Hands the next points to `sink`, which is for the header here. Returns how many, 0 at the end. Fails
    /// as Read does, and as the sink does.
    std::size_t Forward(PointSinkI& sink);

    /// Adds a row for every field and part of the scan, with what is known so far.
    void AddTo(ConversionReportC& report) const;

private:
    struct FieldT
    {
        ScanValueT eValue;
        NumberTypeT eStored;
        ValueConversionC oConversion;
        std::size_t nOffset; ///< in the stored point
    };

    void ChooseFields(const ExportChoicesC& choices);
    void PrepareHeader();
    void PrepareMoves();
    ScanReaderC::StoredT ReadStored();
    std::size_t ForwardStored(PointSinkI& sink);
    void AddScanHeader(ConversionReportC& report) const;
    void AddWhatIsHidden(ConversionReportC& report) const;

    ScanReaderC& m_rReader;
    bool m_bApplyPose;
    std::vector<FieldT> m_vecFields;
    RawHeaderC m_oHeader;
    std::uint64_t m_ullRead = 0;
    std::vector<std::vector<double>> m_vecColumns;
    RecordMovesC m_oMoves;
    bool m_bKeepsBytes = false; ///< every field is written as it is stored, so that its bytes can be moved
};

} // namespace Tool
