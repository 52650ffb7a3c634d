// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Turns the points of a source into points of a scan file, batch by batch in constant memory, and keeps
// account of what each field went through. Knows neither the source's form nor where the scan goes. One
// thread at a time.
#pragma once

#include "Sio/Sio_QsbStrategy.h"
#include "Tools/Qsb/Tool_ImportEncodings.h"
#include "Tools/Qsb/Tool_Report.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <vector>

namespace Tool {

class ScanImportC
{
public:
    /// Decides on encodings, for which the source may be read once. `source` must outlive this. ToolErrorC as
    /// the source throws it, and with s_iDamaged when it has no positions.
    ScanImportC(PointSourceI& source, const ImportChoicesC& choices, const BatchDoneT& batchDone);

    const ScanFormatC& GetFormat() const noexcept { return m_oEncodings.GetFormat(); }
    const SIO::QsbScanInfoC& GetInfo() const noexcept { return m_oInfo; }

    /// Reads the next points, none at the end.
    void Read(std::vector<ScanPointC>& points);

    /// Adds a row for every field and part of the source, with what is known so far.
    void AddTo(ConversionReportC& report) const;

private:
    struct CarriedT
    {
        ScanValueT eValue;
        std::size_t nField;
        ValueConversionC oConversion;
    };

    void PrepareHeader();
    void CountOutside(const std::vector<ScanPointC>& points);
    void AddFields(ConversionReportC& report) const;
    ReportRowC RowOf(const CarriedT& carried) const;
    void AddHeader(ConversionReportC& report) const;
    ReportRowC GridRow() const;

    PointSourceI& m_oSource;
    ImportEncodingsC m_oEncodings;
    bool m_bScaledIntensity;
    std::vector<CarriedT> m_vecCarried;
    SIO::QsbScanInfoC m_oInfo;
    std::optional<std::array<std::uint64_t, 2>> m_oGrid; ///< rows and columns
    std::vector<std::vector<double>> m_vecColumns;
    std::uint64_t m_ullOutsideGrid = 0;
    double m_dGreatestIntensity = 0.0;
};

} // namespace Tool
