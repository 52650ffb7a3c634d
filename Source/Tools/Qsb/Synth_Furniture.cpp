// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The furniture of the room: table and chairs, bookcase, sofa, sideboard with a television, carpet.
#include "Tools/Qsb/Synth_Random.h"
#include "Tools/Qsb/Synth_Room.h"

#include <algorithm>

namespace Tool {

namespace {

void Table(SceneBuilderC& b)
{
    b.Box({-0.85, -0.46, 0.715}, {0.85, 0.46, 0.75}, s_iWood);
    b.Box({-0.76, -0.38, 0.64}, {0.76, 0.38, 0.715}, s_iDarkWood);
    for (const double x : {-0.76, 0.76}) {
        for (const double y : {-0.38, 0.38})
            b.Cone({x, y, 0}, 0.022, 0.036, 0.715, s_iDarkWood);
    }
}

void TableWare(SceneBuilderC& b)
{
    // A laptop, opened upright.
    b.Box({-0.58, -0.30, 0.75}, {-0.24, -0.06, 0.765}, s_iSteel);
    b.Box({-0.58, -0.055, 0.765}, {-0.24, -0.045, 0.985}, s_iSteel);
    b.Box({-0.565, -0.059, 0.785}, {-0.255, -0.0555, 0.97}, s_iScreen);
    b.Cylinder({-0.08, -0.22, 0.75}, 0.042, 0.095, s_iCeramic);
    b.Cone({0.34, 0.04, 0.75}, 0.07, 0.16, 0.075, s_iCeramic);
    for (const auto& [x, y, z] :
         {Vec3C{0.29, 0.0, 0.85}, {0.39, 0.0, 0.85}, {0.34, 0.09, 0.85}, {0.34, 0.03, 0.92}}) {
        b.Ball({x, y, z}, 0.042, s_iOrange);
    }
    b.Box({0.02, 0.12, 0.75}, {0.22, 0.30, 0.785}, s_iBook2);
    b.Box({0.04, 0.13, 0.785}, {0.21, 0.28, 0.81}, s_iBook4);
}

/// Stands with its back at -y.
void Chair(SceneBuilderC& b, int iSeat)
{
    for (const double x : {-0.19, 0.19}) {
        b.Rod({x, 0.19, 0.02}, {x, 0.19, 0.44}, 0.018, s_iDarkWood);
        b.Rod({x, -0.21, 0.02}, {x, -0.19, 0.45}, 0.018, s_iDarkWood);
        b.Rod({x, -0.19, 0.45}, {x * 0.96, -0.26, 0.93}, 0.017, s_iDarkWood);
        b.Rod({x, -0.20, 0.22}, {x, 0.19, 0.22}, 0.010, s_iDarkWood);
    }
    b.Box({-0.22, -0.21, 0.43}, {0.22, 0.22, 0.475}, iSeat);
    for (const double z : {0.62, 0.74, 0.86}) {
        b.Rod({-0.18, -0.215 - 0.1 * (z - 0.6), z}, {0.18, -0.215 - 0.1 * (z - 0.6), z}, 0.022, s_iDarkWood);
    }
}

void TableGroup(SceneBuilderC& b, RandomC& random)
{
    const Vec3C middle{s_oLampLight.x, s_oLampLight.y, 0.0};
    b.Place(middle, 0.01);
    b.Box({-1.35, -1.05, 0}, {1.35, 1.05, 0.012}, s_iCarpet);
    b.Place(middle + Vec3C{0, 0, 0.012}, 0.01);
    Table(b);
    TableWare(b);
    // Position, turn; the one in front has been pushed back and aside.
    struct SeatC
    {
        double x, y, dTurns;
        int iSeat;
    };
    for (const SeatC& seat : {SeatC{-0.42, -0.78, 0.02, s_iFabricBlue},
                              {0.45, -0.66, -0.01, s_iFabricOchre},
                              {-0.40, 0.70, 0.5, s_iFabricOchre},
                              {0.44, 0.72, 0.49, s_iFabricBlue}}) {
        b.Place(middle + Vec3C{seat.x, seat.y, 0.012}, seat.dTurns + random.Uniform(-0.03, 0.03));
        Chair(b, seat.iSeat);
    }
}

/// A row of books from `from` to `to` on a board at height `z`.
void Books(SceneBuilderC& b, RandomC& random, double from, double to, double z, double room)
{
    for (double x = from; x < to;) {
        const double thick = random.Uniform(0.018, 0.055);
        const double height = std::min(random.Uniform(0.19, 0.30), room);
        const double deep = random.Uniform(0.15, 0.23);
        if (x + thick > to) return;
        const int iBook = s_iBook1 + static_cast<int>(random.Uniform(0.0, 6.0));
        b.Box({x, 0.02, z}, {x + thick - 0.002, 0.02 + deep, z + height}, iBook);
        x += thick;
    }
}

void Bookcase(SceneBuilderC& b, RandomC& random)
{
    constexpr double width = 1.9, deep = 0.30, height = 2.1, board = 0.025;
    b.Place({0.45, 0.0, 0.0});
    b.Box({0, 0, 0}, {width, 0.012, height}, s_iWhitePaint);
    for (const double x : {0.0, 0.5 * (width - board), width - board}) {
        b.Box({x, 0, 0}, {x + board, deep, height}, s_iWhitePaint);
    }
    for (int shelf = 0; shelf < 7; ++shelf) {
        const double z = 0.06 + 0.335 * shelf;
        b.Box({0, 0, z}, {width, deep, z + board}, s_iWhitePaint);
        if (shelf == 6) continue;
        for (const double from : {board, 0.5 * (width + board)}) {
            const double fill = random.Uniform(0.45, 0.90);
            Books(b, random, from + 0.005, from + fill, z + board, 0.30);
        }
    }
    b.Box({0.20, 0.04, height + 0.03}, {0.75, 0.28, height + 0.24}, s_iBook6);
    b.Ball({1.55, 0.15, height + 0.16}, 0.13, s_iCeramic);
}

void Sofa(SceneBuilderC& b)
{
    b.Place({2.75, 0.08, 0.0});
    b.Box({0.0, 0.0, 0.10}, {2.0, 0.90, 0.30}, s_iFabricGrey);
    for (const double x : {0.16, 1.0}) {
        b.Box({x + 0.01, 0.22, 0.30}, {x + 0.83, 0.88, 0.42}, s_iFabricGrey);
        b.Rod({x + 0.10, 0.88, 0.36}, {x + 0.74, 0.88, 0.36}, 0.06, s_iFabricGrey);
    }
    b.Box({0.10, 0.0, 0.30}, {1.90, 0.18, 0.72}, s_iFabricGrey);
    b.Rod({0.14, 0.11, 0.72}, {1.86, 0.11, 0.72}, 0.10, s_iFabricGrey);
    for (const double x : {0.08, 1.92}) {
        b.Rod({x, 0.10, 0.54}, {x, 0.84, 0.54}, 0.10, s_iFabricGrey);
        b.Box({x - 0.08, 0.0, 0.10}, {x + 0.08, 0.90, 0.54}, s_iFabricGrey);
        for (const double y : {0.08, 0.82})
            b.Cylinder({x, y, 0}, 0.025, 0.10, s_iDarkWood);
    }
    b.EllipsoidAlong({0.42, 0.36, 0.62}, {0.15, 1.0, 0.35}, {0.22, 0.20, 0.075}, s_iFabricOchre);
    b.EllipsoidAlong({1.58, 0.35, 0.62}, {-0.2, 1.0, 0.40}, {0.21, 0.20, 0.075}, s_iFabricBlue);
}

void Sideboard(SceneBuilderC& b)
{
    b.Place({0.0, 1.45, 0.0});
    b.Box({0.02, 0.0, 0.12}, {0.44, 2.1, 0.56}, s_iDarkWood);
    for (int front = 0; front < 3; ++front) {
        b.Box({0.44, 0.02 + 0.695 * front, 0.14}, {0.455, 0.69 + 0.695 * front, 0.54}, s_iWood);
        b.Rod({0.465, 0.30 + 0.695 * front, 0.47}, {0.465, 0.42 + 0.695 * front, 0.47}, 0.007, s_iSteel);
    }
    for (const double y : {0.1, 2.0}) {
        for (const double x : {0.08, 0.38})
            b.Cylinder({x, y, 0}, 0.022, 0.12, s_iBlackMetal);
    }
    // The television hangs on the wall: black glass, which gives nothing back unless it is hit square.
    b.Box({0.0, 0.30, 0.92}, {0.05, 1.82, 1.79}, s_iBlackMetal);
    b.Box({0.05, 0.32, 0.94}, {0.053, 1.80, 1.77}, s_iBlackGlass);
    b.Box({0.12, 0.85, 0.56}, {0.24, 1.65, 0.63}, s_iBlackMetal);
    b.Cone({0.24, 0.28, 0.56}, 0.05, 0.09, 0.26, s_iTerracotta);
}

} // namespace

void BuildFurniture(SceneBuilderC& builder, std::uint64_t seed)
{
    RandomC random(seed, 1);
    TableGroup(builder, random);
    Bookcase(builder, random);
    Sofa(builder);
    Sideboard(builder);
    builder.Place({});
}

} // namespace Tool
