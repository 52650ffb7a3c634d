// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The solids that the simulated scene is built of, and where a ray enters one. Solids are closed and seen
// from outside only.
#pragma once

#include "Tools/Qsb/Synth_Material.h"
#include "Tools/Qsb/Synth_Vector.h"

namespace Tool {

struct RayC
{
    Vec3C oOrigin;
    Vec3C oDirection; ///< of length 1
};

enum class ShapeKindT
{
    Box,       ///< oSize: half extents
    Ellipsoid, ///< oSize: half axes
    Frustum,   ///< about the third axis; oSize: radius below, radius above, half height
    Capsule,   ///< about the third axis; oSize: radius, unused, half the distance of the two centres
};

struct ShapeC
{
    ShapeKindT eKind = ShapeKindT::Box;
    FrameC oFrame; ///< origin in the middle of the shape
    Vec3C oSize;
    int iMaterial = 0;
};

/// An axis-aligned box around something.
struct ExtentC
{
    Vec3C oMin, oMax;
};

/// Where a ray enters a shape, in the shape's own frame.
struct EntryC
{
    double dDistance = 0.0;
    Vec3C oPoint;
    Vec3C oNormal;
};

/// The first entry between `nearest` and `farthest` along the ray. False, and `entry` unchanged, when there
/// is none.
bool Enter(const ShapeC& shape, const RayC& ray, double nearest, double farthest, EntryC& entry) noexcept;

/// Half the extents of the shape in its own frame.
Vec3C HalfExtents(const ShapeC& shape) noexcept;

/// A box in world coordinates that contains the shape.
ExtentC ExtentOf(const ShapeC& shape) noexcept;

} // namespace Tool
