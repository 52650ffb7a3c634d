// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Rays and solids. Each kind is met in its own frame, in which it stands upright in the middle.
#include "Tools/Qsb/Synth_Shape.h"

#include <algorithm>
#include <limits>

namespace Tool {

namespace {

/// A ray in the shape's frame with the part of it that counts, which shrinks to the entry as it is found.
struct LocalRayC
{
    Vec3C p, d;
    double dNearest, dFarthest;

    bool Takes(double t) const noexcept { return t > dNearest && t < dFarthest; }
    Vec3C At(double t) const noexcept { return p + t * d; }
};

bool EnterBox(const Vec3C& half, const LocalRayC& ray, EntryC& entry) noexcept
{
    double in = -std::numeric_limits<double>::infinity();
    double out = std::numeric_limits<double>::infinity();
    int face = 0;
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(ray.d[i]) < 1e-15) {
            if (std::fabs(ray.p[i]) > half[i]) return false;
            continue;
        }
        const double toward = ray.d[i] > 0.0 ? 1.0 : -1.0;
        const double inverse = 1.0 / ray.d[i];
        const double enters = (-toward * half[i] - ray.p[i]) * inverse;
        if (enters > in) {
            in = enters;
            face = i;
        }
        out = std::min(out, (toward * half[i] - ray.p[i]) * inverse);
    }
    if (in > out || !ray.Takes(in)) return false;
    const double side = ray.d[face] > 0.0 ? -1.0 : 1.0;
    entry = {in, ray.At(in), {face == 0 ? side : 0.0, face == 1 ? side : 0.0, face == 2 ? side : 0.0}};
    return true;
}

/// The smaller root of a t^2 + 2 b t + c = 0, which is where a ray enters when a is positive.
bool FirstRoot(double a, double b, double c, double& t) noexcept
{
    const double discriminant = b * b - a * c;
    if (discriminant <= 0.0 || a <= 0.0) return false;
    t = (-b - std::sqrt(discriminant)) / a;
    return true;
}

bool EnterEllipsoid(const Vec3C& half, const LocalRayC& ray, EntryC& entry) noexcept
{
    const Vec3C p{ray.p.x / half.x, ray.p.y / half.y, ray.p.z / half.z};
    const Vec3C d{ray.d.x / half.x, ray.d.y / half.y, ray.d.z / half.z};
    double t = 0.0;
    if (!FirstRoot(Dot(d, d), Dot(p, d), Dot(p, p) - 1.0, t) || !ray.Takes(t)) return false;
    const Vec3C hit = ray.At(t);
    const Vec3C normal{hit.x / (half.x * half.x), hit.y / (half.y * half.y), hit.z / (half.z * half.z)};
    entry = {t, hit, Normalised(normal)};
    return true;
}

bool EnterCap(double z, double radius, LocalRayC& ray, EntryC& entry) noexcept
{
    const double side = z > 0.0 ? 1.0 : -1.0;
    if (ray.d.z * side >= -1e-15) return false;
    const double t = (z - ray.p.z) / ray.d.z;
    const Vec3C hit = ray.At(t);
    if (!ray.Takes(t) || hit.x * hit.x + hit.y * hit.y > radius * radius) return false;
    entry = {t, hit, {0.0, 0.0, side}};
    ray.dFarthest = t;
    return true;
}

/// The side of a cone about the third axis whose radius is `middle` at height 0 and grows by `slope`.
bool EnterSide(double middle, double slope, double halfHeight, LocalRayC& ray, EntryC& entry) noexcept
{
    const double r0 = middle + slope * ray.p.z;
    const double r1 = slope * ray.d.z;
    const double a = ray.d.x * ray.d.x + ray.d.y * ray.d.y - r1 * r1;
    const double b = ray.p.x * ray.d.x + ray.p.y * ray.d.y - r0 * r1;
    const double c = ray.p.x * ray.p.x + ray.p.y * ray.p.y - r0 * r0;
    double t = 0.0;
    if (!FirstRoot(a, b, c, t) || !ray.Takes(t)) return false;
    const Vec3C hit = ray.At(t);
    if (std::fabs(hit.z) > halfHeight) return false;
    entry = {t, hit, Normalised({hit.x, hit.y, -slope * (middle + slope * hit.z)})};
    ray.dFarthest = t;
    return true;
}

bool EnterFrustum(const Vec3C& size, LocalRayC ray, EntryC& entry) noexcept
{
    const double slope = (size.y - size.x) / (2.0 * size.z);
    bool bHit = EnterSide(0.5 * (size.x + size.y), slope, size.z, ray, entry);
    bHit |= EnterCap(-size.z, size.x, ray, entry);
    bHit |= EnterCap(size.z, size.y, ray, entry);
    return bHit;
}

bool EnterEndBall(double z, double radius, LocalRayC& ray, EntryC& entry) noexcept
{
    const Vec3C p = ray.p - Vec3C{0.0, 0.0, z};
    double t = 0.0;
    if (!FirstRoot(1.0, Dot(p, ray.d), Dot(p, p) - radius * radius, t) || !ray.Takes(t)) return false;
    const Vec3C hit = ray.At(t);
    entry = {t, hit, (1.0 / radius) * (hit - Vec3C{0.0, 0.0, z})};
    ray.dFarthest = t;
    return true;
}

bool EnterCapsule(const Vec3C& size, LocalRayC ray, EntryC& entry) noexcept
{
    bool bHit = EnterSide(size.x, 0.0, size.z, ray, entry);
    bHit |= EnterEndBall(size.z, size.x, ray, entry);
    bHit |= EnterEndBall(-size.z, size.x, ray, entry);
    return bHit;
}

} // namespace

bool Enter(const ShapeC& shape, const RayC& ray, double nearest, double farthest, EntryC& entry) noexcept
{
    const LocalRayC local{shape.oFrame.PointToLocal(ray.oOrigin),
                          shape.oFrame.DirectionToLocal(ray.oDirection), nearest, farthest};
    switch (shape.eKind) {
    case ShapeKindT::Box:
        return EnterBox(shape.oSize, local, entry);
    case ShapeKindT::Ellipsoid:
        return EnterEllipsoid(shape.oSize, local, entry);
    case ShapeKindT::Frustum:
        return EnterFrustum(shape.oSize, local, entry);
    default:
        return EnterCapsule(shape.oSize, local, entry);
    }
}

Vec3C HalfExtents(const ShapeC& shape) noexcept
{
    const Vec3C& size = shape.oSize;
    switch (shape.eKind) {
    case ShapeKindT::Frustum: {
        const double radius = std::max(size.x, size.y);
        return {radius, radius, size.z};
    }
    case ShapeKindT::Capsule:
        return {size.x, size.x, size.z + size.x};
    default:
        return size;
    }
}

ExtentC ExtentOf(const ShapeC& shape) noexcept
{
    const Vec3C half = HalfExtents(shape);
    const auto reach = [&](int axis) {
        double sum = 1e-9; // A flat side may be met a rounding error outside its box.
        for (int i = 0; i < 3; ++i)
            sum += std::fabs(shape.oFrame.aoAxis[i][axis]) * half[i];
        return sum;
    };
    const Vec3C sum{reach(0), reach(1), reach(2)};
    return {shape.oFrame.oOrigin - sum, shape.oFrame.oOrigin + sum};
}

} // namespace Tool
