// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the surfaces of the simulated scene are made of: for a place on a surface its colour, and how much of
// the scanner's light it throws back. A pattern mixes two colours and the two reflectances that belong to
// them.
#pragma once

#include "Tools/Qsb/Synth_Vector.h"

namespace Tool {

struct RgbC
{
    double r = 0.0, g = 0.0, b = 0.0; ///< linear, 0 to 1
};

enum class PatternT
{
    Plain,    ///< the first colour
    Mottled,  ///< between both, irregular
    Planks,   ///< boards along the first direction, with joints
    Panels,   ///< squares with thin lines between them
    Stripes,  ///< along the second direction
    Border,   ///< the second colour in bands along the edge of a carpet
    Target,   ///< four quadrants around the middle
    Painting, ///< a landscape, in colours of its own
    Globe,    ///< land and sea
    Screen,   ///< a lit screen with a few windows
};

struct MaterialC
{
    PatternT ePattern = PatternT::Plain;
    double dSize = 1.0; ///< of the pattern's squares, boards or bands, m
    RgbC oFirst;
    RgbC oSecond;
    double dReflectance = 0.5;       ///< of the first colour, for the scanner's light
    double dSecondReflectance = 0.5; ///< of the second
    double dGlow = 0.0;              ///< share of the colour that shines by itself
    bool bGlassy = false;            ///< throws light back only when hit square
};

/// The names of the materials; the numbers are the rows of their table.
enum MaterialIdT : int
{
    s_iWallWhite,
    s_iWallTeal,
    s_iCeiling,
    s_iFloor,
    s_iTrim,
    s_iCarpet,
    s_iConcrete,
    s_iWood,
    s_iDarkWood,
    s_iWhitePaint,
    s_iBlackMetal,
    s_iSteel,
    s_iFabricGrey,
    s_iFabricBlue,
    s_iFabricOchre,
    s_iLampShade,
    s_iLightPanel,
    s_iBlackGlass,
    s_iScreen,
    s_iTarget,
    s_iReferenceSphere,
    s_iPainting,
    s_iGlobe,
    s_iTerracotta,
    s_iLeaf,
    s_iLeafDark,
    s_iSkin,
    s_iHair,
    s_iShirt,
    s_iTrousers,
    s_iShoe,
    s_iCeramic,
    s_iOrange,
    s_iBook1,
    s_iBook2,
    s_iBook3,
    s_iBook4,
    s_iBook5,
    s_iBook6,
    s_iCorridor,
    s_iMaterialCount
};

const MaterialC& Material(int id) noexcept;

/// Where on a shape a surface is looked at: the place in the shape's own frame, the direction of the surface
/// there and half the shape's extents.
struct SurfacePlaceC
{
    Vec3C oPoint;
    Vec3C oNormal;
    Vec3C oHalf;
};

struct SurfaceC
{
    RgbC oColor;
    double dReflectance = 0.0;
};

SurfaceC SurfaceAt(const MaterialC& material, const SurfacePlaceC& place) noexcept;

} // namespace Tool
