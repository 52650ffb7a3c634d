// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The shell of the room: floor, ceiling, walls with their openings, window, door and the corridor behind it.
#include "Tools/Qsb/Synth_Room.h"

namespace Tool {

namespace {

constexpr double s_dThick = 0.2;
constexpr double s_dX = s_oRoomSize.x, s_dY = s_oRoomSize.y, s_dZ = s_oRoomSize.z;

// The openings, in the direction along their wall and in height.
constexpr double s_dWindowFrom = 1.9, s_dWindowTo = 3.9, s_dWindowSill = 0.9, s_dWindowTop = 2.2;
constexpr double s_dDoorFrom = 2.05, s_dDoorTo = 2.95, s_dDoorTop = 2.05;

void Walls(SceneBuilderC& b)
{
    b.Box({0, 0, -s_dThick}, {s_dX, s_dY, 0}, s_iFloor);
    b.Box({0, 0, s_dZ}, {s_dX, s_dY, s_dZ + s_dThick}, s_iCeiling);
    b.Box({-s_dThick, -s_dThick, -s_dThick}, {0, s_dY + s_dThick, s_dZ + s_dThick}, s_iWallTeal);
    b.Box({0, -s_dThick, -s_dThick}, {s_dX, 0, s_dZ + s_dThick}, s_iWallWhite);
    // North, around the window.
    const double in = s_dY, out = s_dY + s_dThick;
    b.Box({0, in, -s_dThick}, {s_dWindowFrom, out, s_dZ}, s_iWallWhite);
    b.Box({s_dWindowTo, in, -s_dThick}, {s_dX, out, s_dZ}, s_iWallWhite);
    b.Box({s_dWindowFrom, in, -s_dThick}, {s_dWindowTo, out, s_dWindowSill}, s_iWallWhite);
    b.Box({s_dWindowFrom, in, s_dWindowTop}, {s_dWindowTo, out, s_dZ}, s_iWallWhite);
    // East, around the door.
    const double east = s_dX + s_dThick;
    b.Box({s_dX, -s_dThick, -s_dThick}, {east, s_dDoorFrom, s_dZ + s_dThick}, s_iWallWhite);
    b.Box({s_dX, s_dDoorTo, -s_dThick}, {east, s_dY + s_dThick, s_dZ + s_dThick}, s_iWallWhite);
    b.Box({s_dX, s_dDoorFrom, s_dDoorTop}, {east, s_dDoorTo, s_dZ + s_dThick}, s_iWallWhite);
}

void Skirting(SceneBuilderC& b)
{
    constexpr double height = 0.09, deep = 0.015;
    b.Box({0, 0, 0}, {s_dX, deep, height}, s_iTrim);
    b.Box({0, s_dY - deep, 0}, {s_dX, s_dY, height}, s_iTrim);
    b.Box({0, 0, 0}, {deep, s_dY, height}, s_iTrim);
    b.Box({s_dX - deep, 0, 0}, {s_dX, s_dDoorFrom - 0.08, height}, s_iTrim);
    b.Box({s_dX - deep, s_dDoorTo + 0.08, 0}, {s_dX, s_dY, height}, s_iTrim);
}

void Window(SceneBuilderC& b)
{
    constexpr double bar = 0.035, y0 = s_dY + 0.07, y1 = s_dY + 0.13;
    constexpr double middle = 0.5 * (s_dWindowFrom + s_dWindowTo);
    b.Box({s_dWindowFrom, y0, s_dWindowSill}, {s_dWindowFrom + 2 * bar, y1, s_dWindowTop}, s_iTrim);
    b.Box({s_dWindowTo - 2 * bar, y0, s_dWindowSill}, {s_dWindowTo, y1, s_dWindowTop}, s_iTrim);
    b.Box({s_dWindowFrom, y0, s_dWindowSill}, {s_dWindowTo, y1, s_dWindowSill + 2 * bar}, s_iTrim);
    b.Box({s_dWindowFrom, y0, s_dWindowTop - 2 * bar}, {s_dWindowTo, y1, s_dWindowTop}, s_iTrim);
    b.Box({middle - bar, y0, s_dWindowSill}, {middle + bar, y1, s_dWindowTop}, s_iTrim);
    b.Box({s_dWindowFrom, y0, 1.75}, {s_dWindowTo, y1, 1.75 + bar}, s_iTrim);
    b.Box({s_dWindowFrom - 0.06, s_dY - 0.14, s_dWindowSill - 0.04},
          {s_dWindowTo + 0.06, s_dY + 0.07, s_dWindowSill}, s_iTrim);
    // Curtain rail and two curtains in folds.
    b.Rod({s_dWindowFrom - 0.45, s_dY - 0.09, 2.36}, {s_dWindowTo + 0.45, s_dY - 0.09, 2.36}, 0.014,
          s_iSteel);
    for (const double from : {s_dWindowFrom - 0.40, s_dWindowTo + 0.02}) {
        for (int fold = 0; fold < 6; ++fold) {
            const double x = from + 0.04 + 0.06 * fold;
            b.Cylinder({x, s_dY - 0.09 + (fold % 2 == 0 ? 0.018 : -0.018), 0.06}, 0.04, 2.28, s_iFabricOchre);
        }
    }
}

void Radiator(SceneBuilderC& b)
{
    b.Box({2.05, s_dY - 0.055, 0.14}, {3.75, s_dY - 0.03, 0.72}, s_iWhitePaint);
    for (int rib = 0; rib < 21; ++rib) {
        const double x = 2.05 + 0.085 * rib;
        b.Rod({x, s_dY - 0.075, 0.16}, {x, s_dY - 0.075, 0.70}, 0.022, s_iWhitePaint);
    }
    b.Rod({3.75, s_dY - 0.06, 0.18}, {3.90, s_dY - 0.06, 0.0}, 0.012, s_iSteel);
}

void Door(SceneBuilderC& b)
{
    for (const double y : {s_dDoorFrom - 0.08, s_dDoorTo}) {
        b.Box({s_dX - 0.02, y, 0}, {s_dX + s_dThick + 0.02, y + 0.08, s_dDoorTop + 0.08}, s_iTrim);
    }
    b.Box({s_dX - 0.02, s_dDoorFrom, s_dDoorTop}, {s_dX + s_dThick + 0.02, s_dDoorTo, s_dDoorTop + 0.08},
          s_iTrim);
    // The leaf stands open into the room, hinged on the north side.
    b.Place({s_dX - 0.01, s_dDoorTo + 0.01, 0.01}, 0.5 - 0.065);
    b.Box({0, 0, 0}, {0.88, 0.04, 2.02}, s_iWood);
    for (const double z : {0.15, 1.15})
        b.Box({0.12, 0.04, z}, {0.76, 0.05, z + 0.72}, s_iDarkWood);
    b.Rod({0.82, 0.04, 1.02}, {0.82, 0.095, 1.02}, 0.011, s_iSteel);
    b.Rod({0.82, 0.095, 1.02}, {0.70, 0.095, 1.02}, 0.011, s_iSteel);
    b.Place({});
}

void Corridor(SceneBuilderC& b)
{
    constexpr double from = s_dX + s_dThick, to = 70.0, south = 1.5, north = 3.5, top = 2.4;
    b.Box({from, south, -s_dThick}, {to, north, -0.001}, s_iConcrete);
    b.Box({from, south, top}, {to, north, top + s_dThick}, s_iWallWhite);
    b.Box({from, south - s_dThick, 0}, {to, south, top}, s_iCorridor);
    b.Box({from, north, 0}, {to, north + s_dThick, top}, s_iCorridor);
    for (int frame = 0; frame < 6; ++frame) {
        const double x = 9.5 + 4.0 * frame;
        b.Box({x, north - 0.03, 0}, {x + 0.95, north, 2.05}, s_iWood);
        b.Box({x + 1.6, south, 0}, {x + 2.55, south + 0.03, 2.05}, s_iWood);
        b.Box({x - 0.6, 2.2, top - 0.05}, {x + 0.6, 2.8, top}, s_iLightPanel);
    }
    b.Box({11.9, 3.15, 0}, {12.4, 3.45, 0.75}, s_iSteel);
}

void CeilingLights(SceneBuilderC& b)
{
    for (const double x : {1.5, 3.3})
        b.Box({x, 1.2, s_dZ - 0.03}, {x + 0.6, 2.4, s_dZ}, s_iLightPanel);
    // The lamp over the table: rose, cord, shade.
    b.Cylinder({s_oLampLight.x, s_oLampLight.y, s_dZ - 0.05}, 0.06, 0.05, s_iSteel);
    b.Rod({s_oLampLight.x, s_oLampLight.y, 1.9}, {s_oLampLight.x, s_oLampLight.y, s_dZ - 0.04}, 0.006,
          s_iBlackMetal);
    b.Cone({s_oLampLight.x, s_oLampLight.y, s_oLampLight.z + 0.04}, 0.24, 0.09, 0.24, s_iLampShade);
}

} // namespace

void BuildShell(SceneBuilderC& builder)
{
    builder.Place({});
    Walls(builder);
    Skirting(builder);
    Window(builder);
    Radiator(builder);
    Door(builder);
    Corridor(builder);
    CeilingLights(builder);
}

SceneC FurnishedRoom(std::uint64_t seed)
{
    SceneBuilderC builder;
    BuildShell(builder);
    BuildFurniture(builder, seed);
    BuildThings(builder, seed);
    BuildPerson(builder);
    return SceneC(builder.Take());
}

} // namespace Tool
