// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Five lights: the lamp over the table, the panels in the ceiling, the sun and the sky through the window,
// and what comes back from everywhere. The first three cast shadows.
#include "Tools/Qsb/Synth_Shading.h"

#include "Tools/Qsb/Synth_Room.h"

#include <algorithm>
#include <initializer_list>

namespace Tool {

namespace {

constexpr double s_dOffSurface = 1e-4; ///< shadow rays begin this far outside
constexpr Vec3C s_oPanelLight{2.7, 1.8, 2.62};
constexpr Vec3C s_oToSun{0.251259, 0.753778, 0.607206};

/// Light of a lamp that shines downwards, falling with distance and slant.
double FromLamp(const SceneC& scene, const HitC& hit, const Vec3C& lamp, double power, double softening)
{
    const Vec3C way = lamp - hit.oPoint;
    const double facing = Dot(way, hit.oNormal);
    if (facing <= 0.0 || way.z <= 0.0) return 0.0;
    const double distance = Length(way);
    const RayC ray{hit.oPoint + s_dOffSurface * hit.oNormal, (1.0 / distance) * way};
    if (scene.IsBlocked(ray, distance - 0.01)) return 0.0;
    // Toward the sides the lamp grows dim over the last part of its opening.
    const double side = std::min(way.z / distance * 3.0, 1.0);
    return power * side * facing / distance / (softening + distance * distance);
}

double FromSun(const SceneC& scene, const HitC& hit)
{
    const double facing = Dot(s_oToSun, hit.oNormal);
    if (facing <= 0.0) return 0.0;
    return scene.IsBlocked({hit.oPoint + s_dOffSurface * hit.oNormal, s_oToSun}, 100.0) ? 0.0 : 1.5 * facing;
}

double FromSky(const HitC& hit)
{
    const Vec3C way = s_oWindowMiddle - hit.oPoint;
    const double distance = Length(way);
    const double facing = Dot(way, hit.oNormal) / distance;
    const double leaving = way.y / distance;
    if (facing <= 0.0 || leaving <= 0.0) return 0.0;
    return 1.7 * facing * leaving / (1.2 + distance * distance);
}

/// Corners of the room get less of what comes back from everywhere.
double Openness(const HitC& hit)
{
    double open = 1.0;
    const auto near = [&](double distance, double alongNormal) {
        // The surface itself is near, and says nothing.
        if (std::fabs(alongNormal) < 0.5) open *= 1.0 - 0.40 * 0.10 / (0.10 + std::max(distance, 0.0));
    };
    near(hit.oPoint.x, hit.oNormal.x);
    near(s_oRoomSize.x - hit.oPoint.x, hit.oNormal.x);
    near(hit.oPoint.y, hit.oNormal.y);
    near(s_oRoomSize.y - hit.oPoint.y, hit.oNormal.y);
    near(hit.oPoint.z, hit.oNormal.z);
    near(s_oRoomSize.z - hit.oPoint.z, hit.oNormal.z);
    return open;
}

struct LightC
{
    double dWarm, dWhite, dSun, dBlue;
};

LightC LightAt(const SceneC& scene, const HitC& hit)
{
    // The corridor has lights of its own, all alike.
    if (hit.oPoint.x > s_oRoomSize.x + 0.1) return {0.0, 0.42 + 0.12 * hit.oNormal.z, 0.0, 0.0};
    return {FromLamp(scene, hit, s_oLampLight, 0.75, 0.25),
            (0.23 + 0.05 * hit.oNormal.z) * Openness(hit) + FromLamp(scene, hit, s_oPanelLight, 1.1, 0.9),
            FromSun(scene, hit), FromSky(hit)};
}

} // namespace

void Shade(const SceneC& scene, const HitC& hit, const SurfaceC& surface, RandomC& random,
           double (&color)[3]) noexcept
{
    const LightC light = LightAt(scene, hit);
    const double glow = Material(hit.poShape->iMaterial).dGlow;
    const double adLight[3] = {
        light.dWarm * 1.00 + light.dWhite + light.dSun * 1.00 + light.dBlue * 0.85 + glow,
        light.dWarm * 0.80 + light.dWhite + light.dSun * 0.92 + light.dBlue * 0.95 + glow,
        light.dWarm * 0.52 + light.dWhite + light.dSun * 0.74 + light.dBlue * 1.05 + glow};
    const double adAlbedo[3] = {surface.oColor.r, surface.oColor.g, surface.oColor.b};
    for (int i = 0; i < 3; ++i) {
        // The square root stands in for the usual gamma.
        const double seen = 255.0 * std::sqrt(adAlbedo[i] * adLight[i]) + 1.5 * random.Normal();
        color[i] = std::floor(std::clamp(seen + 0.5, 0.0, 255.0));
    }
}

} // namespace Tool
