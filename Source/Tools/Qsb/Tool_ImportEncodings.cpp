// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The decisions, element by element.
#include "Tools/Qsb/Tool_ImportEncodings.h"

#include "Sio/SIO_QsbPointDefinition.h"
#include "Tools/Qsb/Tool_Encodings.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Printable.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Tool {

namespace {

constexpr double s_dGreatestIndex = 4294967295.0;

std::size_t IndexOf(ScanValueT eValue)
{
    return static_cast<std::size_t>(eValue);
}

std::uint32_t TypeCodeOf(SIO::PointDataKindT eKind, NumberTypeT eType)
{
    return EncodingOf(eKind, std::string(NameOf(eType)));
}

bool Within(const FieldSurveyC& survey, NumberTypeT eType)
{
    return survey.dLeast >= LeastOf(eType) && survey.dGreatest <= GreatestOf(eType);
}

} // namespace

ImportEncodingsC::ImportEncodingsC(PointSourceI& source, const ImportChoicesC& choices,
                                   const BatchDoneT& batchDone)
    : m_oSource(source), m_oChoices(choices), m_aFields(MapFields(source.GetFields())),
      m_vecReasons(source.GetFields().size())
{
    if (!Has(ScanValueT::X) || !Has(ScanValueT::Y) || !Has(ScanValueT::Z)) {
        throw ToolErrorC(
            s_iDamaged,
            fmt::format("{}: the points have no positions; fields x, y and z are needed", source.GetName()));
    }
    DropIncomplete({ScanValueT::Noise}, choices.bNoNoise, "");
    DropIncomplete({ScanValueT::Red, ScanValueT::Green, ScanValueT::Blue}, choices.bNoColor,
                   "a colour needs red, green and blue");
    DropIncomplete({ScanValueT::Row, ScanValueT::Column}, choices.bNoGrid, "a grid index needs row and col");
    Survey(batchDone);

    m_oFormat.uiPosition = TypeCodeOf(SIO::PD_POSITION, ChoosePosition());
    m_oFormat.uiIntensity = TypeCodeOf(SIO::PD_INTENSITY, ChooseIntensity());
    if (Has(ScanValueT::Noise)) m_oFormat.uiNoise = TypeCodeOf(SIO::PD_LEVEL_OF_NOISE, ChooseNoise());
    if (Has(ScanValueT::Row)) m_oFormat.uiGrid = TypeCodeOf(SIO::PD_GRID, ChooseGrid());
    if (Has(ScanValueT::Red)) m_oFormat.uiColor = TypeCodeOf(SIO::PD_COLOR, NumberTypeT::UInt8);
    if (Has(ScanValueT::Red)) m_dColorMax = ChooseColorMax();
}

void ImportEncodingsC::DropIncomplete(std::initializer_list<ScanValueT> values, bool bUnwanted,
                                      const std::string& reason)
{
    const bool bAll =
        std::all_of(values.begin(), values.end(), [&](ScanValueT eValue) { return Has(eValue); });
    if (bAll && !bUnwanted) return;
    for (const ScanValueT eValue : values) {
        auto& oField = m_aFields[IndexOf(eValue)];
        if (oField) m_vecReasons[*oField] = bUnwanted ? "left out as asked" : reason;
        oField.reset();
    }
}

NumberTypeT ImportEncodingsC::TypeOf(ScanValueT eValue) const
{
    return m_oSource.GetFields()[*m_aFields[IndexOf(eValue)]].eType;
}

bool ImportEncodingsC::NeedsSurvey(ScanValueT eValue) const
{
    if (!Has(eValue)) return false;
    const NumberTypeT eType = TypeOf(eValue);
    switch (eValue) {
    case ScanValueT::Intensity:
        return !m_oChoices.oIntensity && !IsFloating(eType) && SizeOf(eType) > 2;
    case ScanValueT::Noise:
        return !m_oChoices.oNoise && !IsFloating(eType) && eType != NumberTypeT::UInt8 &&
               eType != NumberTypeT::UInt16;
    case ScanValueT::Red:
    case ScanValueT::Green:
    case ScanValueT::Blue:
        return !m_oChoices.oColorMax && eType != NumberTypeT::UInt8;
    case ScanValueT::Row:
    case ScanValueT::Column:
        return !m_oSource.GetHeader().oGrid || (!m_oChoices.oGrid && !HoldsAllOf(NumberTypeT::UInt32, eType));
    default:
        return false;
    }
}

void ImportEncodingsC::Survey(const BatchDoneT& batchDone)
{
    std::vector<ScanValueT> values;
    std::vector<std::size_t> fields;
    for (std::size_t i = 0; i < s_nScanValues; ++i) {
        if (!NeedsSurvey(static_cast<ScanValueT>(i))) continue;
        values.push_back(static_cast<ScanValueT>(i));
        fields.push_back(*m_aFields[i]);
    }
    if (fields.empty()) return;
    const std::vector<FieldSurveyC> surveys = SurveyFields(m_oSource, fields, batchDone);
    for (std::size_t i = 0; i < values.size(); ++i)
        m_aSurveys[IndexOf(values[i])] = surveys[i];
    m_bGridSurveyed = NeedsSurvey(ScanValueT::Row) && NeedsSurvey(ScanValueT::Column);
}

NumberTypeT ImportEncodingsC::ChoosePosition() const
{
    if (m_oChoices.oPosition) return *m_oChoices.oPosition;
    const auto fitsFloat = [&](ScanValueT eValue) { return HoldsAllOf(NumberTypeT::Float, TypeOf(eValue)); };
    const bool bFloat = fitsFloat(ScanValueT::X) && fitsFloat(ScanValueT::Y) && fitsFloat(ScanValueT::Z);
    return bFloat ? NumberTypeT::Float : NumberTypeT::Double;
}

NumberTypeT ImportEncodingsC::ChooseIntensity() const
{
    if (m_oChoices.oIntensity) return *m_oChoices.oIntensity;
    if (!Has(ScanValueT::Intensity)) return NumberTypeT::UInt16;
    const NumberTypeT eType = TypeOf(ScanValueT::Intensity);
    if (IsFloating(eType)) return NumberTypeT::Float;
    for (const NumberTypeT eCandidate : {NumberTypeT::UInt16, NumberTypeT::Int16}) {
        const bool bFits = NeedsSurvey(ScanValueT::Intensity)
                               ? Within(SurveyOf(ScanValueT::Intensity), eCandidate)
                               : HoldsAllOf(eCandidate, eType);
        if (bFits) return eCandidate;
    }
    return NumberTypeT::Float;
}

NumberTypeT ImportEncodingsC::ChooseNoise() const
{
    if (m_oChoices.oNoise) return *m_oChoices.oNoise;
    const NumberTypeT eType = TypeOf(ScanValueT::Noise);
    if (!NeedsSurvey(ScanValueT::Noise)) return IsFloating(eType) ? NumberTypeT::Float : eType;
    for (const NumberTypeT eCandidate : {NumberTypeT::UInt8, NumberTypeT::UInt16}) {
        if (Within(SurveyOf(ScanValueT::Noise), eCandidate)) return eCandidate;
    }
    return NumberTypeT::Float;
}

NumberTypeT ImportEncodingsC::ChooseGrid() const
{
    if (m_oChoices.oGrid) return *m_oChoices.oGrid;
    const auto fits = [&](ScanValueT eValue) {
        // By type where the type tells, so that 32-bit indices stay what they are.
        if (HoldsAllOf(NumberTypeT::UInt32, TypeOf(eValue)))
            return HoldsAllOf(NumberTypeT::UInt16, TypeOf(eValue));
        return SurveyOf(eValue).dGreatest <= GreatestOf(NumberTypeT::UInt16);
    };
    return fits(ScanValueT::Row) && fits(ScanValueT::Column) ? NumberTypeT::UInt16 : NumberTypeT::UInt32;
}

double ImportEncodingsC::ChooseColorMax() const
{
    if (m_oChoices.oColorMax) return *m_oChoices.oColorMax;
    double dGreatest = 0.0;
    bool bFloating = false;
    for (const ScanValueT eValue : {ScanValueT::Red, ScanValueT::Green, ScanValueT::Blue}) {
        bFloating = bFloating || IsFloating(TypeOf(eValue));
        if (NeedsSurvey(eValue)) dGreatest = std::max(dGreatest, SurveyOf(eValue).dGreatest);
    }
    // Colours are 0 to 1 as floating numbers, 0 to 65535 as wide integers; but 0 to 255 is found in either
    // type.
    if (bFloating && dGreatest <= 1.0) return 1.0;
    return dGreatest <= 255.0 ? 255.0 : 65535.0;
}

ValueConversionC ImportEncodingsC::MakeConversion(ScanValueT eValue) const
{
    const NumberTypeT eSource = TypeOf(eValue);
    switch (eValue) {
    case ScanValueT::Intensity:
        return {eSource, StoredTypeOf(m_oFormat, eValue), m_oChoices.dIntensityScale, 1.0};
    case ScanValueT::Red:
    case ScanValueT::Green:
    case ScanValueT::Blue:
        return {eSource, NumberTypeT::UInt8, 255.0, m_dColorMax};
    default:
        return {eSource, StoredTypeOf(m_oFormat, eValue)};
    }
}

std::string ImportEncodingsC::GetReasonForDropping(std::size_t nField) const
{
    if (!m_vecReasons[nField].empty()) return m_vecReasons[nField];
    const auto oValue = ValueNamed(m_oSource.GetFields()[nField].strName);
    const auto oWinner = oValue ? m_aFields[IndexOf(*oValue)] : std::nullopt;
    if (!oWinner) return "a scan file has no place for it";
    return fmt::format("{} is taken from {}", NameOf(*oValue),
                       Printable(m_oSource.GetFields()[*oWinner].strName));
}

std::optional<std::array<std::uint64_t, 2>> ImportEncodingsC::GetGridOfIndices() const
{
    if (!m_bGridSurveyed || m_oSource.GetNumberOfPoints() == 0) return std::nullopt;
    const auto size = [&](ScanValueT eValue) {
        const double dLargest = std::nearbyint(SurveyOf(eValue).dGreatest);
        return static_cast<std::uint64_t>(std::clamp(dLargest, 0.0, s_dGreatestIndex)) + 1;
    };
    return std::array<std::uint64_t, 2>{size(ScanValueT::Row), size(ScanValueT::Column)};
}

} // namespace Tool
