// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Collects solids piece by piece: a place is chosen, and what follows stands there, in metres from it.
#pragma once

#include "Tools/Qsb/Synth_Shape.h"

#include <utility>
#include <vector>

namespace Tool {

class SceneBuilderC
{
public:
    /// What follows stands at `origin`, turned about the vertical.
    void Place(const Vec3C& origin, double turns = 0.0) { m_oPlace = UprightFrame(origin, turns); }

    void Box(const Vec3C& min, const Vec3C& max, int iMaterial)
    {
        Add(ShapeKindT::Box, {0.5 * (min + max)}, 0.5 * (max - min), iMaterial);
    }

    void Ellipsoid(const Vec3C& middle, const Vec3C& halfAxes, int iMaterial)
    {
        Add(ShapeKindT::Ellipsoid, {middle}, halfAxes, iMaterial);
    }

    /// An ellipsoid whose third axis points along `direction`.
    void EllipsoidAlong(const Vec3C& middle, const Vec3C& direction, const Vec3C& halfAxes, int iMaterial)
    {
        Add(ShapeKindT::Ellipsoid, FrameAlong(middle, direction), halfAxes, iMaterial);
    }

    void Ball(const Vec3C& middle, double radius, int iMaterial)
    {
        Ellipsoid(middle, {radius, radius, radius}, iMaterial);
    }

    /// Upright, from the middle of its foot.
    void Cone(const Vec3C& foot, double radius, double radiusAbove, double height, int iMaterial)
    {
        Add(ShapeKindT::Frustum, {foot + Vec3C{0.0, 0.0, 0.5 * height}}, {radius, radiusAbove, 0.5 * height},
            iMaterial);
    }

    void Cylinder(const Vec3C& foot, double radius, double height, int iMaterial)
    {
        Cone(foot, radius, radius, height, iMaterial);
    }

    /// A rod with round ends.
    void Rod(const Vec3C& from, const Vec3C& to, double radius, int iMaterial)
    {
        const Vec3C along = to - from;
        Add(ShapeKindT::Capsule, FrameAlong(0.5 * (from + to), along), {radius, radius, 0.5 * Length(along)},
            iMaterial);
    }

    std::vector<ShapeC> Take() { return std::move(m_vecShapes); }

private:
    void Add(ShapeKindT eKind, const FrameC& frame, const Vec3C& size, int iMaterial)
    {
        m_vecShapes.push_back({eKind, Within(m_oPlace, frame), size, iMaterial});
    }

    FrameC m_oPlace;
    std::vector<ShapeC> m_vecShapes;
};

} // namespace Tool
