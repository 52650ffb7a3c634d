// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The table of materials and the patterns. A pattern sees a surface as a plane: the two coordinates across
// the axis that the surface faces most.
#include "Tools/Qsb/Synth_Material.h"

#include "Tools/Qsb/Synth_Random.h"

#include <algorithm>

namespace Tool {

namespace {

using enum PatternT;

// clang-format off
constexpr MaterialC s_aoMaterials[s_iMaterialCount] = {
    // pattern, size,  first colour,            second colour,          reflectances, glow, glassy
    {Mottled,  0.40, {0.78, 0.75, 0.68},       {0.74, 0.71, 0.64},       0.80, 0.77, 0.0, false}, // white wall
    {Mottled,  0.40, {0.055, 0.20, 0.22},      {0.05, 0.18, 0.20},       0.42, 0.40, 0.0, false}, // teal wall
    {Panels,   0.60, {0.84, 0.84, 0.82},       {0.40, 0.40, 0.40},       0.86, 0.55, 0.0, false}, // ceiling
    {Planks,   0.16, {0.36, 0.19, 0.085},      {0.20, 0.10, 0.04},       0.52, 0.34, 0.0, false}, // floor
    {Plain,    1.00, {0.82, 0.82, 0.80},       {},                       0.84, 0.00, 0.0, false}, // trim
    {Border,   0.09, {0.38, 0.055, 0.05},      {0.70, 0.58, 0.38},       0.40, 0.62, 0.0, false}, // carpet
    {Mottled,  0.09, {0.40, 0.39, 0.37},       {0.30, 0.30, 0.29},       0.46, 0.36, 0.0, false}, // concrete
    {Stripes,  0.03, {0.48, 0.28, 0.12},       {0.42, 0.24, 0.10},       0.60, 0.55, 0.0, false}, // wood
    {Stripes,  0.03, {0.12, 0.055, 0.025},     {0.095, 0.045, 0.02},     0.28, 0.25, 0.0, false}, // dark wood
    {Plain,    1.00, {0.76, 0.76, 0.76},       {},                       0.80, 0.00, 0.0, false}, // white paint
    {Plain,    1.00, {0.02, 0.02, 0.022},      {},                       0.09, 0.00, 0.0, false}, // black metal
    {Plain,    1.00, {0.42, 0.44, 0.46},       {},                       0.55, 0.00, 0.0, false}, // steel
    {Mottled,  0.02, {0.16, 0.17, 0.19},       {0.12, 0.13, 0.15},       0.48, 0.42, 0.0, false}, // grey fabric
    {Mottled,  0.02, {0.04, 0.09, 0.26},       {0.03, 0.07, 0.21},       0.50, 0.45, 0.0, false}, // blue fabric
    {Mottled,  0.02, {0.62, 0.36, 0.05},       {0.54, 0.31, 0.04},       0.62, 0.57, 0.0, false}, // ochre fabric
    {Plain,    1.00, {1.00, 0.86, 0.58},       {},                       0.70, 0.00, 0.9, false}, // lamp shade
    {Plain,    1.00, {1.00, 0.98, 0.92},       {},                       0.82, 0.00, 1.0, false}, // light panel
    {Plain,    1.00, {0.010, 0.011, 0.013},    {},                       0.90, 0.00, 0.0, true},  // black glass
    {Screen,   1.00, {0.05, 0.16, 0.40},       {0.85, 0.88, 0.92},       0.16, 0.20, 0.7, false}, // screen
    {Target,   1.00, {0.90, 0.90, 0.90},       {0.02, 0.02, 0.02},       0.92, 0.07, 0.0, false}, // target
    {Plain,    1.00, {0.90, 0.90, 0.89},       {},                       0.93, 0.00, 0.0, false}, // reference sphere
    {Painting, 1.00, {0.95, 0.60, 0.25},       {0.10, 0.22, 0.12},       0.60, 0.35, 0.0, false}, // painting
    {Globe,    1.00, {0.03, 0.16, 0.40},       {0.22, 0.30, 0.08},       0.30, 0.55, 0.0, false}, // globe
    {Mottled,  0.05, {0.46, 0.17, 0.08},       {0.40, 0.15, 0.07},       0.58, 0.52, 0.0, false}, // terracotta
    {Plain,    1.00, {0.07, 0.26, 0.045},      {},                       0.66, 0.00, 0.0, false}, // leaf
    {Plain,    1.00, {0.035, 0.16, 0.03},      {},                       0.58, 0.00, 0.0, false}, // dark leaf
    {Plain,    1.00, {0.58, 0.32, 0.22},       {},                       0.62, 0.00, 0.0, false}, // skin
    {Plain,    1.00, {0.07, 0.035, 0.02},      {},                       0.22, 0.00, 0.0, false}, // hair
    {Stripes,  0.06, {0.60, 0.08, 0.07},       {0.70, 0.66, 0.60},       0.52, 0.70, 0.0, false}, // shirt
    {Mottled,  0.02, {0.05, 0.065, 0.12},      {0.04, 0.055, 0.10},      0.36, 0.32, 0.0, false}, // trousers
    {Plain,    1.00, {0.10, 0.06, 0.03},       {},                       0.20, 0.00, 0.0, false}, // shoe
    {Plain,    1.00, {0.30, 0.52, 0.56},       {},                       0.70, 0.00, 0.0, false}, // ceramic
    {Mottled,  0.01, {0.85, 0.32, 0.02},       {0.80, 0.28, 0.02},       0.74, 0.70, 0.0, false}, // orange
    {Stripes,  0.07, {0.42, 0.05, 0.045},      {0.62, 0.45, 0.16},       0.48, 0.60, 0.0, false}, // books
    {Stripes,  0.09, {0.05, 0.13, 0.30},       {0.60, 0.60, 0.58},       0.38, 0.66, 0.0, false},
    {Stripes,  0.06, {0.08, 0.24, 0.11},       {0.62, 0.50, 0.20},       0.46, 0.60, 0.0, false},
    {Plain,    1.00, {0.68, 0.61, 0.45},       {},                       0.72, 0.00, 0.0, false},
    {Stripes,  0.11, {0.10, 0.09, 0.10},       {0.55, 0.14, 0.10},       0.18, 0.44, 0.0, false},
    {Plain,    1.00, {0.52, 0.27, 0.06},       {},                       0.58, 0.00, 0.0, false},
    {Plain,    1.00, {0.58, 0.56, 0.50},       {},                       0.60, 0.00, 0.0, false}, // corridor
};
// clang-format on

struct PlaneC
{
    double u, v; ///< from the middle of the surface, m
    double dHalfU, dHalfV;
};

/// The place in the plane that faces along the strongest component of the normal; v is the height on walls.
PlaneC PlaneOf(const SurfacePlaceC& place) noexcept
{
    const Vec3C& p = place.oPoint;
    const Vec3C& h = place.oHalf;
    const double x = std::fabs(place.oNormal.x);
    const double y = std::fabs(place.oNormal.y);
    const double z = std::fabs(place.oNormal.z);
    if (z >= x && z >= y) return {p.x, p.y, h.x, h.y};
    if (x >= y) return {p.y, p.z, h.y, h.z};
    return {p.x, p.z, h.x, h.z};
}

std::int64_t CellOf(double d) noexcept
{
    return static_cast<std::int64_t>(std::floor(d));
}

double Clamp01(double d) noexcept
{
    return std::clamp(d, 0.0, 1.0);
}

/// Smooth irregular values: hashed corners of a lattice, joined bilinearly.
double Lattice(double u, double v, double w) noexcept
{
    const std::int64_t a = CellOf(u);
    const std::int64_t b = CellOf(v);
    const double fu = u - static_cast<double>(a);
    const double fv = v - static_cast<double>(b);
    const std::int64_t layer = CellOf(w) * 4096;
    const double low = (1.0 - fu) * HashedUniform(a, b + layer) + fu * HashedUniform(a + 1, b + layer);
    const double high =
        (1.0 - fu) * HashedUniform(a, b + 1 + layer) + fu * HashedUniform(a + 1, b + 1 + layer);
    return (1.0 - fv) * low + fv * high;
}

double PlankShare(const PlaneC& at, double width) noexcept
{
    constexpr double length = 1.35;
    const std::int64_t row = CellOf(at.v / width);
    const double along = at.u / length + HashedUniform(row, 17);
    const std::int64_t board = CellOf(along);
    const double acrossJoint = at.v - static_cast<double>(row) * width;
    const double alongJoint = (along - static_cast<double>(board)) * length;
    if (acrossJoint < 0.004 || alongJoint < 0.004) return 1.6;
    const double grain = Lattice(at.u * 4.0, at.v * 90.0, 1.0);
    return 0.75 * HashedUniform(row, board) + 0.35 * grain;
}

double PanelShare(const PlaneC& at, double size) noexcept
{
    const double u = at.u - static_cast<double>(CellOf(at.u / size)) * size;
    const double v = at.v - static_cast<double>(CellOf(at.v / size)) * size;
    return u < 0.012 || v < 0.012 ? 1.0 : 0.0;
}

double BorderShare(const PlaneC& at, double width) noexcept
{
    const double edge = std::min(at.dHalfU - std::fabs(at.u), at.dHalfV - std::fabs(at.v));
    if (edge > width && edge < 1.6 * width) return 1.0;
    if (edge <= width) return 0.0;
    const double diamond = std::fabs(at.u) / at.dHalfU + std::fabs(at.v) / at.dHalfV;
    return (CellOf(diamond * 7.0) & 1) != 0 && diamond < 0.86 ? 0.45 : 0.0;
}

RgbC Mixed(const RgbC& a, const RgbC& b, double share) noexcept
{
    return {a.r + (b.r - a.r) * share, a.g + (b.g - a.g) * share, a.b + (b.b - a.b) * share};
}

/// A sunset over two ridges, in a dark frame.
SurfaceC PaintingAt(const MaterialC& material, const PlaneC& at) noexcept
{
    constexpr double frame = 0.05;
    const double edge = std::min(at.dHalfU - std::fabs(at.u), at.dHalfV - std::fabs(at.v));
    if (edge < frame) return {{0.10, 0.055, 0.03}, 0.25};
    const double u = at.u / at.dHalfU;
    const double v = at.v / at.dHalfV;
    const double far = 0.05 + 0.22 * Lattice(u * 3.0 + 40.0, 0.5, 2.0);
    const double near = -0.45 + 0.40 * Lattice(u * 2.0 + 90.0, 0.5, 3.0);
    if (v < near) return {Mixed(material.oSecond, {0.02, 0.05, 0.03}, Clamp01((near - v) * 1.2)), 0.32};
    if (v < far) return {Mixed({0.22, 0.16, 0.30}, {0.34, 0.22, 0.28}, Clamp01((far - v) * 2.0)), 0.40};
    const double sun = (u - 0.35) * (u - 0.35) * 1.6 + (v - 0.36) * (v - 0.36);
    if (sun < 0.022) return {{1.0, 0.90, 0.55}, 0.88};
    return {Mixed(material.oFirst, {0.20, 0.30, 0.55}, Clamp01(v * 1.3 + sun * 0.3)), 0.62};
}

double GlobeShare(const SurfacePlaceC& place) noexcept
{
    const Vec3C p = 3.4 * Normalised(place.oPoint) + Vec3C{31.3, 17.2, 8.1};
    const double land = 0.6 * Lattice(p.x, p.y, p.z) + 0.4 * Lattice(p.y * 2.0, p.z * 2.0, p.x);
    return std::fabs(place.oNormal.z) > 0.93 || land > 0.52 ? 1.0 : 0.0;
}

double ScreenShare(const PlaneC& at) noexcept
{
    const double u = at.u / at.dHalfU;
    const double v = at.v / at.dHalfV;
    const bool bText = u > -0.75 && u < 0.25 && v > -0.6 && v < 0.7;
    if (!bText) return v < -0.85 ? 0.4 : 0.0;
    const std::int64_t line = CellOf(v * 9.0);
    return (line & 1) != 0 && u < -0.55 + 0.75 * HashedUniform(line, 5) ? 0.35 : 1.0;
}

double ShareOfSecond(const MaterialC& material, const SurfacePlaceC& place, const PlaneC& at) noexcept
{
    const double size = material.dSize;
    switch (material.ePattern) {
    case Mottled:
        return Lattice(at.u / size, at.v / size, 7.0);
    case Planks:
        return PlankShare(at, size);
    case Panels:
        return PanelShare(at, size);
    case Stripes:
        return static_cast<double>(CellOf(at.v / size) & 1);
    case Border:
        return BorderShare(at, size);
    case Target:
        return (at.u < 0.0) == (at.v < 0.0) ? 1.0 : 0.0;
    case Globe:
        return GlobeShare(place);
    case Screen:
        return ScreenShare(at);
    case Plain:
    case Painting:
        break;
    }
    return 0.0;
}

} // namespace

const MaterialC& Material(int id) noexcept
{
    return s_aoMaterials[id];
}

SurfaceC SurfaceAt(const MaterialC& material, const SurfacePlaceC& place) noexcept
{
    const PlaneC at = PlaneOf(place);
    if (material.ePattern == Painting) return PaintingAt(material, at);
    const double share = ShareOfSecond(material, place, at);
    const double dReflectance =
        material.dReflectance + (material.dSecondReflectance - material.dReflectance) * std::min(share, 1.0);
    return {Mixed(material.oFirst, material.oSecond, std::min(share, 1.0)), dReflectance};
}

} // namespace Tool
