// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The conversion of a value, and the way back by which it is judged.
#include "Tools/Qsb/Tool_ValueConversion.h"

#include "Sio/Sio_LittleEndian.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Tool {

namespace {

template<typename T>
std::uint64_t CountNotFinite(const char* pFirst, std::size_t nStride, std::size_t nCount) noexcept
{
    std::uint64_t ullCount = 0;
    for (std::size_t i = 0; i < nCount; ++i)
        ullCount += std::isfinite(SIO::LoadLittleEndian<T>(pFirst + i * nStride)) ? 0 : 1;
    return ullCount;
}

} // namespace

ValueConversionC::ValueConversionC(NumberTypeT eSource, NumberTypeT eStored, double dMultiplier,
                                   double dDivisor)
    : m_eSource(eSource), m_eStored(eStored), m_dMultiplier(dMultiplier), m_dDivisor(dDivisor),
      m_bExact(dMultiplier == dDivisor && HoldsAllOf(eStored, eSource))
{}

void ValueConversionC::Convert(std::vector<double>& values)
{
    if (IsFloating(m_eSource)) {
        for (const double dValue : values)
            m_ullNotFinite += std::isfinite(dValue) ? 0 : 1;
    }
    if (m_bExact) return;
    for (double& dValue : values) {
        const double dStored = Stored(dValue * m_dMultiplier / m_dDivisor);
        Compare(dValue, dStored);
        dValue = dStored;
    }
}

void ValueConversionC::NoteKept(const char* pFirst, std::size_t nStride, std::size_t nCount) noexcept
{
    if (m_eSource == NumberTypeT::Float) m_ullNotFinite += CountNotFinite<float>(pFirst, nStride, nCount);
    if (m_eSource == NumberTypeT::Double) m_ullNotFinite += CountNotFinite<double>(pFirst, nStride, nCount);
}

double ValueConversionC::Stored(double dScaled) const noexcept
{
    if (m_eStored == NumberTypeT::Double) return dScaled;
    if (m_eStored == NumberTypeT::Float) return static_cast<double>(static_cast<float>(dScaled));
    if (std::isnan(dScaled)) return 0.0;
    return std::clamp(std::nearbyint(dScaled), LeastOf(m_eStored), GreatestOf(m_eStored));
}

void ValueConversionC::Compare(double dValue, double dStored) noexcept
{
    double dBack = dStored * m_dDivisor / m_dMultiplier;
    if (m_eSource == NumberTypeT::Float) dBack = static_cast<double>(static_cast<float>(dBack));
    if (dBack == dValue || (std::isnan(dBack) && std::isnan(dValue))) return;
    ++m_ullChanged;
    const double dChange = std::abs(dBack - dValue);
    if (dChange > m_dLargestChange)
        m_dLargestChange = dChange; // A NaN that became 0 has no distance from it.
}

ReportRowC ValueConversionC::GetReportRow(const std::string& what) const
{
    ReportRowC row;
    row.strWhat = what;
    row.strSourceType = NameOf(m_eSource);
    row.strStoredType = NameOf(m_eStored);
    row.ullChanged = m_ullChanged;
    row.dLargestChange = m_dLargestChange;
    row.bLoss = m_ullChanged != 0;
    if (m_dMultiplier != m_dDivisor) {
        row.eOutcome = OutcomeT::Scaled;
        row.dFactor = m_dMultiplier / m_dDivisor;
    } else if (m_ullChanged != 0) {
        row.eOutcome = OutcomeT::Changed;
    }
    if (m_ullNotFinite != 0) row.strNote = fmt::format("{} are not finite", m_ullNotFinite);
    return row;
}

} // namespace Tool
