// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Vectors, angles and frames of the simulated scene. Only the four operations and the square root are used,
// which every platform rounds alike, so a scene looks the same everywhere to the last bit; the C library's
// sine would not.
#pragma once

#include <cmath>

namespace Tool {

struct Vec3C
{
    double x = 0.0, y = 0.0, z = 0.0;

    double operator[](int i) const noexcept { return i == 0 ? x : i == 1 ? y : z; }
};

inline Vec3C operator+(const Vec3C& a, const Vec3C& b) noexcept
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3C operator-(const Vec3C& a, const Vec3C& b) noexcept
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3C operator*(double d, const Vec3C& a) noexcept
{
    return {d * a.x, d * a.y, d * a.z};
}
inline double Dot(const Vec3C& a, const Vec3C& b) noexcept
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double Length(const Vec3C& a) noexcept
{
    return std::sqrt(Dot(a, a));
}
inline Vec3C Normalised(const Vec3C& a) noexcept
{
    return (1.0 / Length(a)) * a;
}

inline Vec3C Cross(const Vec3C& a, const Vec3C& b) noexcept
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct SinCosC
{
    double dSin, dCos;
};

/// Sine and cosine of an angle in whole turns, so that quarter turns are exact. Any finite angle below 2^50.
SinCosC SinCosOfTurns(double turns) noexcept;

/// A right-handed frame: origin and three unit vectors at right angles, in world coordinates.
struct FrameC
{
    Vec3C oOrigin;
    Vec3C aoAxis[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    Vec3C DirectionToWorld(const Vec3C& v) const noexcept
    {
        return v.x * aoAxis[0] + v.y * aoAxis[1] + v.z * aoAxis[2];
    }
    Vec3C PointToWorld(const Vec3C& p) const noexcept { return oOrigin + DirectionToWorld(p); }

    Vec3C DirectionToLocal(const Vec3C& v) const noexcept
    {
        return {Dot(v, aoAxis[0]), Dot(v, aoAxis[1]), Dot(v, aoAxis[2])};
    }

    Vec3C PointToLocal(const Vec3C& p) const noexcept { return DirectionToLocal(p - oOrigin); }
};

/// A frame at `origin`, turned about the vertical.
FrameC UprightFrame(const Vec3C& origin, double turns) noexcept;

/// A frame at `origin` whose third axis points along `direction`, which need not be of length 1.
FrameC FrameAlong(const Vec3C& origin, const Vec3C& direction) noexcept;

/// The frame `inner`, given in coordinates of `outer`, in world coordinates.
FrameC Within(const FrameC& outer, const FrameC& inner) noexcept;

} // namespace Tool
