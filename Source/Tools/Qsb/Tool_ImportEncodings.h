// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which encoding each value of a source gets in the scan file: the smallest that loses nothing, judged by the
// types of the source and, where they do not tell, by a first look at the values; or the one that the user
// asks for.
#pragma once

#include "Tools/Qsb/Tool_FieldNames.h"
#include "Tools/Qsb/Tool_FieldSurvey.h"
#include "Tools/Qsb/Tool_ScanFormat.h"
#include "Tools/Qsb/Tool_ValueConversion.h"

#include <optional>

namespace Tool {

/// What the user may ask for. An encoding that the file format does not have is the caller's error.
struct ImportChoicesC
{
    std::optional<NumberTypeT> oPosition;
    std::optional<NumberTypeT> oIntensity;
    std::optional<NumberTypeT> oNoise;
    std::optional<NumberTypeT> oGrid;
    bool bNoNoise = false; ///< leave out
    bool bNoGrid = false;
    bool bNoColor = false;
    double dIntensityScale = 1.0;    ///< positive
    std::optional<double> oColorMax; ///< the source's value of full colour, positive
};

class ImportEncodingsC
{
public:
    /// Decides, reading the values once when that is needed. ToolErrorC with s_iDamaged when there are no
    /// positions.
    ImportEncodingsC(PointSourceI& source, const ImportChoicesC& choices, const BatchDoneT& batchDone);

    const ScanFormatC& GetFormat() const noexcept { return m_oFormat; }

    /// The fields that are carried.
    const FieldMapT& GetFields() const noexcept { return m_aFields; }

    /// How a carried value is converted.
    ValueConversionC MakeConversion(ScanValueT eValue) const;

    /// Why a field is not carried.
    std::string GetReasonForDropping(std::size_t nField) const;

    /// Rows and columns that the greatest indices make, where the indices were looked at.
    std::optional<std::array<std::uint64_t, 2>> GetGridOfIndices() const;

private:
    void DropIncomplete(std::initializer_list<ScanValueT> values, bool bUnwanted, const std::string& reason);
    void Survey(const BatchDoneT& batchDone);
    bool NeedsSurvey(ScanValueT eValue) const;
    NumberTypeT ChoosePosition() const;
    NumberTypeT ChooseIntensity() const;
    NumberTypeT ChooseNoise() const;
    NumberTypeT ChooseGrid() const;
    double ChooseColorMax() const;
    bool Has(ScanValueT eValue) const { return m_aFields[static_cast<std::size_t>(eValue)].has_value(); }
    NumberTypeT TypeOf(ScanValueT eValue) const;
    const FieldSurveyC& SurveyOf(ScanValueT eValue) const
    {
        return m_aSurveys[static_cast<std::size_t>(eValue)];
    }

    PointSourceI& m_oSource;
    ImportChoicesC m_oChoices;
    FieldMapT m_aFields;
    std::array<FieldSurveyC, s_nScanValues> m_aSurveys;
    bool m_bGridSurveyed = false;
    std::vector<std::string> m_vecReasons; ///< per field, empty unless there is a reason of its own
    ScanFormatC m_oFormat;
    double m_dColorMax = 255.0;
};

} // namespace Tool
