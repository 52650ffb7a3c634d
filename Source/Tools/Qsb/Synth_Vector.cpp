// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Sine and cosine from their series, and frames.
#include "Tools/Qsb/Synth_Vector.h"

#include <cstdint>
#include <initializer_list>

namespace Tool {

namespace {

constexpr double s_dTurn = 6.283185307179586476925286766559;

// Both series are good to the last bit or so up to an eighth of a turn, where their last terms are below
// 1e-17.
double SinSeries(double x) noexcept
{
    const double q = x * x;
    double sum = 1.0;
    for (const double inverse :
         {1.0 / 272, 1.0 / 210, 1.0 / 156, 1.0 / 110, 1.0 / 72, 1.0 / 42, 1.0 / 20, 1.0 / 6}) {
        sum = 1.0 - q * inverse * sum;
    }
    return x * sum;
}

double CosSeries(double x) noexcept
{
    const double q = x * x;
    double sum = 1.0;
    for (const double inverse :
         {1.0 / 306, 1.0 / 240, 1.0 / 182, 1.0 / 132, 1.0 / 90, 1.0 / 56, 1.0 / 30, 1.0 / 12, 1.0 / 2}) {
        sum = 1.0 - q * inverse * sum;
    }
    return sum;
}

} // namespace

SinCosC SinCosOfTurns(double turns) noexcept
{
    const double quarters = std::floor(turns * 4.0 + 0.5);
    const double rest = (turns - quarters * 0.25) * s_dTurn;
    const double s = SinSeries(rest);
    const double c = CosSeries(rest);
    switch (static_cast<std::int64_t>(quarters) & 3) {
    case 0:
        return {s, c};
    case 1:
        return {c, -s};
    case 2:
        return {-s, -c};
    default:
        return {-c, s};
    }
}

FrameC UprightFrame(const Vec3C& origin, double turns) noexcept
{
    const SinCosC a = SinCosOfTurns(turns);
    return {origin, {{a.dCos, a.dSin, 0.0}, {-a.dSin, a.dCos, 0.0}, {0.0, 0.0, 1.0}}};
}

FrameC FrameAlong(const Vec3C& origin, const Vec3C& direction) noexcept
{
    const Vec3C third = Normalised(direction);
    const Vec3C helper = std::fabs(third.z) < 0.9 ? Vec3C{0.0, 0.0, 1.0} : Vec3C{1.0, 0.0, 0.0};
    const Vec3C first = Normalised(Cross(helper, third));
    return {origin, {first, Cross(third, first), third}};
}

FrameC Within(const FrameC& outer, const FrameC& inner) noexcept
{
    return {outer.PointToWorld(inner.oOrigin),
            {outer.DirectionToWorld(inner.aoAxis[0]), outer.DirectionToWorld(inner.aoAxis[1]),
             outer.DirectionToWorld(inner.aoAxis[2])}};
}

} // namespace Tool
