// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What stands and hangs about in the room: column, globe, plant, painting, and the targets and reference
// spheres that surveyors put up.
#include "Tools/Qsb/Synth_Random.h"
#include "Tools/Qsb/Synth_Room.h"

namespace Tool {

namespace {

void Column(SceneBuilderC& b)
{
    b.Place({6.05, 1.05, 0.0});
    b.Cylinder({}, 0.17, s_oRoomSize.z, s_iConcrete);
    b.Cylinder({}, 0.21, 0.08, s_iTrim);
}

void Globe(SceneBuilderC& b)
{
    b.Place({0.62, 4.55, 0.0});
    b.Cone({}, 0.20, 0.05, 0.06, s_iDarkWood);
    b.Cylinder({0, 0, 0.05}, 0.03, 0.62, s_iDarkWood);
    b.Cone({0, 0, 0.66}, 0.03, 0.12, 0.05, s_iDarkWood);
    b.Ball({0, 0, 0.98}, 0.28, s_iGlobe);
    b.Rod({0, 0, 1.24}, {0, 0, 1.30}, 0.012, s_iSteel);
}

/// Leaves on bent stems out of a pot.
void Plant(SceneBuilderC& b, RandomC& random)
{
    b.Place({6.68, 4.85, 0.0});
    b.Cone({}, 0.15, 0.21, 0.36, s_iTerracotta);
    b.Cone({0, 0, 0.33}, 0.225, 0.225, 0.05, s_iTerracotta);
    for (int stem = 0; stem < 26; ++stem) {
        const SinCosC around = SinCosOfTurns(stem * 0.381966 + random.Uniform(-0.03, 0.03));
        const double rise = 0.45 + 1.05 * (stem / 26.0) + random.Uniform(-0.08, 0.08);
        const double out = 0.16 + 0.30 * random.Uniform();
        const Vec3C bend{0.45 * out * around.dCos, 0.45 * out * around.dSin, 0.30 + 0.75 * rise};
        const Vec3C tip{out * around.dCos, out * around.dSin, 0.34 + rise};
        b.Rod({0.03 * around.dCos, 0.03 * around.dSin, 0.3}, bend, 0.006, s_iLeafDark);
        b.Rod(bend, tip, 0.005, s_iLeafDark);
        const Vec3C across{-around.dSin * 0.3 + 0.35 * around.dCos, around.dCos * 0.3 + 0.35 * around.dSin,
                           1.0};
        const Vec3C blade = tip + 0.10 * Vec3C{around.dCos, around.dSin, 0.1};
        b.EllipsoidAlong(blade, across, {0.075, 0.14, 0.012}, stem % 3 == 0 ? s_iLeafDark : s_iLeaf);
    }
}

void OnTheWalls(SceneBuilderC& b)
{
    b.Place({});
    b.Box({3.05, 0.0, 1.25}, {4.35, 0.035, 2.10}, s_iPainting);
    b.Box({7.17, 4.05, 1.35}, {7.20, 4.65, 2.15}, s_iPainting);
    // Paper targets.
    b.Box({5.15, 0.0, 1.60}, {5.45, 0.004, 1.90}, s_iTarget);
    b.Box({1.15, 5.396, 1.55}, {1.40, 5.40, 1.80}, s_iTarget);
    b.Box({7.196, 3.35, 1.55}, {7.20, 3.60, 1.80}, s_iTarget);
    b.Box({0.0, 4.05, 1.75}, {0.004, 4.30, 2.00}, s_iTarget);
    // Switch by the door, a clock over the sideboard's end.
    b.Box({7.185, 1.78, 1.08}, {7.20, 1.86, 1.16}, s_iTrim);
    b.Ellipsoid({0.0, 0.85, 2.0}, {0.03, 0.17, 0.17}, s_iReferenceSphere);
    b.Rod({0.032, 0.85, 2.0}, {0.032, 0.85, 2.11}, 0.006, s_iBlackMetal);
    b.Rod({0.032, 0.85, 2.0}, {0.032, 0.93, 2.03}, 0.006, s_iBlackMetal);
}

void ReferenceSphere(SceneBuilderC& b, const Vec3C& foot, double height)
{
    b.Place(foot);
    for (int leg = 0; leg < 3; ++leg) {
        const SinCosC around = SinCosOfTurns(leg / 3.0 + 0.08);
        b.Rod({0.34 * around.dCos, 0.34 * around.dSin, 0.01},
              {0.03 * around.dCos, 0.03 * around.dSin, height - 0.30}, 0.012, s_iFabricOchre);
    }
    b.Cylinder({0, 0, height - 0.32}, 0.05, 0.06, s_iBlackMetal);
    b.Cylinder({0, 0, height - 0.26}, 0.012, 0.20, s_iSteel);
    b.Ball({0, 0, height}, 0.1, s_iReferenceSphere);
}

} // namespace

void BuildThings(SceneBuilderC& builder, std::uint64_t seed)
{
    RandomC random(seed, 2);
    Column(builder);
    Globe(builder);
    Plant(builder, random);
    OnTheWalls(builder);
    ReferenceSphere(builder, {1.15, 1.05, 0.0}, 1.25);
    ReferenceSphere(builder, {3.75, 4.75, 0.0}, 1.45);
    builder.Place({});
}

void BuildPerson(SceneBuilderC& builder)
{
    // Stands at the window's left side and looks into the room; x is its left hand's side, -y where it looks.
    builder.Place({1.62, 4.35, 0.0}, 0.07);
    for (const double side : {-1.0, 1.0}) {
        const double hip = 0.095 * side;
        builder.EllipsoidAlong({0.11 * side, -0.05, 0.045}, {0.0, -1.0, 0.0}, {0.05, 0.05, 0.14}, s_iShoe);
        builder.Rod({0.11 * side, 0.02, 0.10}, {0.10 * side, 0.0, 0.50}, 0.058, s_iTrousers);
        builder.Rod({0.10 * side, 0.0, 0.50}, {hip, 0.0, 0.90}, 0.078, s_iTrousers);
        builder.Rod({0.20 * side, 0.0, 1.40}, {0.27 * side, 0.03, 1.13}, 0.050, s_iShirt);
    }
    // One arm hangs, the other is bent to hold a cup.
    builder.Rod({0.27, 0.03, 1.13}, {0.28, -0.06, 0.88}, 0.040, s_iSkin);
    builder.Ellipsoid({0.28, -0.08, 0.80}, {0.035, 0.05, 0.085}, s_iSkin);
    builder.Rod({-0.27, 0.03, 1.13}, {-0.17, -0.22, 1.20}, 0.040, s_iSkin);
    builder.Ball({-0.155, -0.26, 1.21}, 0.05, s_iSkin);
    builder.Cylinder({-0.14, -0.32, 1.18}, 0.035, 0.095, s_iReferenceSphere);

    builder.Ellipsoid({0.0, 0.0, 0.96}, {0.18, 0.125, 0.15}, s_iTrousers);
    builder.Ellipsoid({0.0, 0.0, 1.22}, {0.195, 0.13, 0.30}, s_iShirt);
    builder.Ellipsoid({0.0, 0.0, 1.385}, {0.225, 0.105, 0.085}, s_iShirt);
    builder.Rod({0.0, 0.0, 1.44}, {0.0, -0.01, 1.54}, 0.055, s_iSkin);
    builder.Ellipsoid({0.0, -0.02, 1.635}, {0.078, 0.096, 0.118}, s_iSkin);
    builder.Ellipsoid({0.0, 0.012, 1.675}, {0.086, 0.098, 0.105}, s_iHair);
    builder.Ellipsoid({0.0, -0.118, 1.62}, {0.014, 0.018, 0.022}, s_iSkin);
    builder.Place({});
}

} // namespace Tool
