// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Values of one number type on their way into another: scaled where that is wanted, rounded to the nearest
// value that the new type has, clamped to its range, NaN as 0 where it has none. Counts the values that
// cannot be had back as they were. One thread at a time.
#pragma once

#include "Tools/Qsb/Tool_NumberType.h"
#include "Tools/Qsb/Tool_Report.h"

#include <cstdint>
#include <vector>

namespace Tool {

class ValueConversionC
{
public:
    /// Values are multiplied by `dMultiplier` and divided by `dDivisor`, both positive.
    ValueConversionC(NumberTypeT eSource, NumberTypeT eStored, double dMultiplier = 1.0,
                     double dDivisor = 1.0);

    /// Replaces values by what is to be stored.
    void Convert(std::vector<double>& values);

    /// Whether what is to be stored are the same numbers in the same type.
    bool KeepsBytes() const noexcept { return m_bExact && m_eSource == m_eStored; }

    /// Takes note of little-endian numbers that are kept as they are: the first one, and how far apart they
    /// are.
    void NoteKept(const char* pFirst, std::size_t nStride, std::size_t nCount) noexcept;

    NumberTypeT GetStoredType() const noexcept { return m_eStored; }
    std::uint64_t GetChanged() const noexcept { return m_ullChanged; }

    /// What became of the values so far.
    ReportRowC GetReportRow(const std::string& what) const;

private:
    double Stored(double dScaled) const noexcept;
    void Compare(double dValue, double dStored) noexcept;

    NumberTypeT m_eSource;
    NumberTypeT m_eStored;
    double m_dMultiplier;
    double m_dDivisor;
    bool m_bExact; ///< no value can change
    std::uint64_t m_ullChanged = 0;
    std::uint64_t m_ullNotFinite = 0;
    double m_dLargestChange = 0.0;
};

} // namespace Tool
