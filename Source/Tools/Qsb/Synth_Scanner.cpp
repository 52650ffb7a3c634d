// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// From a place in the grid to a direction, a hit, an answer and a point.
#include "Tools/Qsb/Synth_Scanner.h"

#include "Tools/Qsb/Synth_Random.h"
#include "Tools/Qsb/Synth_Room.h"
#include "Tools/Qsb/Synth_Sensor.h"
#include "Tools/Qsb/Synth_Shading.h"

#include <algorithm>

namespace Tool {

namespace {

constexpr double s_dInstrumentHeightM = 1.65;
constexpr Vec3C s_oStation{3.05, 2.5, s_dInstrumentHeightM}; ///< in the room
constexpr double s_dHeadingTurns = 0.59;                     ///< first column, in the room
constexpr double s_dLeanTurns = 0.0014;                      ///< a tripod never stands quite upright
constexpr Vec3C s_oSite{2417.35, 1180.62, 86.4};             ///< corner of the room in the world
constexpr double s_dSiteTurns = 0.0861;                      ///< turn of the room in the world

constexpr double s_dLowestTurns = -60.0 / 360.0; ///< below is the tripod
constexpr double s_dHighestTurns = 90.0 / 360.0;
constexpr double s_dDropOutShare = 0.001;
constexpr double s_dSquare = 0.9995; ///< cosine up to which glass answers
constexpr double s_dGlassAnswer = 0.003;

FrameC Stand()
{
    const SinCosC lean = SinCosOfTurns(s_dLeanTurns);
    const FrameC leaning{{}, {{1.0, 0.0, 0.0}, {0.0, lean.dCos, lean.dSin}, {0.0, -lean.dSin, lean.dCos}}};
    return Within(UprightFrame(s_oStation, s_dHeadingTurns), leaning);
}

} // namespace

SynthScannerC::SynthScannerC(const SynthSettingsC& settings)
    : m_oSettings(settings), m_oScene(FurnishedRoom(settings.ullSeed)), m_oStand(Stand())
{}

SIO::QsbScanInfoC SynthScannerC::GetInfo() const noexcept
{
    SIO::QsbScanInfoC info;
    const FrameC pose = Within(UprightFrame(s_oSite, s_dSiteTurns), m_oStand);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            info.oTransformation.At(row, column) = pose.aoAxis[column][row];
        info.oTransformation.At(row, 3) = pose.oOrigin[row];
    }
    info.dInstrumentHeight = s_dInstrumentHeightM;
    if (m_oSettings.oFormat.uiGrid != 0) {
        info.auiGridSize[0] = m_oSettings.uiRows - 1;
        info.auiGridSize[1] = m_oSettings.uiColumns - 1;
    }
    return info;
}

Vec3C SynthScannerC::DirectionOf(std::uint32_t uiRow, std::uint32_t uiColumn) const noexcept
{
    const double rise = (uiRow + 0.5) / m_oSettings.uiRows;
    const SinCosC elevation = SinCosOfTurns(s_dLowestTurns + (s_dHighestTurns - s_dLowestTurns) * rise);
    const SinCosC azimuth = SinCosOfTurns(-(uiColumn + 0.5) / m_oSettings.uiColumns);
    return {elevation.dCos * azimuth.dCos, elevation.dCos * azimuth.dSin, elevation.dSin};
}

AnswerT SynthScannerC::Measure(std::uint32_t uiRow, std::uint32_t uiColumn, ScanPointC& point) const noexcept
{
    RandomC random(m_oSettings.ullSeed, std::uint64_t{uiColumn} << 32 | uiRow);
    const Vec3C direction = DirectionOf(uiRow, uiColumn);
    const RayC ray{m_oStand.oOrigin, m_oStand.DirectionToWorld(direction)};
    HitC hit;
    if (!m_oScene.Meet(ray, s_dLongestRangeM, hit)) return AnswerT::Nothing;

    const MaterialC& material = Material(hit.poShape->iMaterial);
    SurfaceC surface = SurfaceAt(material, hit.oPlace);
    const double incidence = std::clamp(-Dot(ray.oDirection, hit.oNormal), 0.0, 1.0);
    if (material.bGlassy && incidence < s_dSquare) surface.dReflectance = s_dGlassAnswer;
    const double amplitude =
        AmplitudeOf(surface.dReflectance, hit.dDistance, incidence) * (1.0 + 0.03 * random.Normal());
    if (amplitude < s_dWeakestAmplitude) return AnswerT::TooWeak;
    if (random.Uniform() < s_dDropOutShare) return AnswerT::DropOut;

    const ScanFormatC& format = m_oSettings.oFormat;
    const double deviation = RangeDeviation(m_oSettings.dRangeNoiseM, amplitude);
    const Vec3C position = (hit.dDistance + deviation * random.Normal()) * direction;
    point.x = position.x;
    point.y = position.y;
    point.z = position.z;
    point.dIntensity = EncodedIntensity(format.uiIntensity, amplitude);
    if (format.uiNoise != 0) point.dNoise = EncodedNoise(format.uiNoise, deviation);
    if (format.uiGrid != 0) {
        point.adGrid[0] = uiRow;
        point.adGrid[1] = uiColumn;
    }
    if (format.uiColor != 0) Shade(m_oScene, hit, surface, random, point.adColor);
    return AnswerT::Point;
}

} // namespace Tool
