// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How strongly a surface answers the scanner, how well its range is then known, and the numbers that stand
// for both in each encoding. Pure functions.
#pragma once

#include <cstdint>

namespace Tool {

/// Weaker answers are not noticed.
inline constexpr double s_dWeakestAmplitude = 0.004;

/// Farther answers are not noticed.
inline constexpr double s_dLongestRangeM = 40.0;

/// 0 to 1: falls with the range and the more the beam grazes; `incidence` is the cosine of the angle to the
/// normal.
double AmplitudeOf(double reflectance, double rangeM, double incidence) noexcept;

/// Standard deviation of a range, in the unit of `deviation`, which is that of an answer of middling
/// strength.
double RangeDeviation(double deviation, double amplitude) noexcept;

/// An amplitude as an intensity element of this type code holds it: 0 to 65535 (unsigned), -2048 to 2047
/// (signed) or 0 to 1 (float).
double EncodedIntensity(std::uint32_t uiType, double amplitude) noexcept;

/// A range deviation in metres as a level-of-noise element of this type code holds it: steps of 20 um (8
/// bits), of 1 um (16 bits) or in mm (float).
double EncodedNoise(std::uint32_t uiType, double deviationM) noexcept;

} // namespace Tool
