// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The simulated scanner on its tripod in the room: for each row and column of the grid what it measures
// there. Every measurement depends on the settings and its place in the grid alone, so they may be taken in
// any order and from many threads, and come out the same on every platform.
#pragma once

#include "Sio/Sio_QsbStrategy.h"
#include "Tools/Qsb/Synth_Scene.h"
#include "Tools/Qsb/Tool_ScanFormat.h"
#include "Tools/Qsb/Tool_ScanPoint.h"

#include <cstdint>

namespace Tool {

struct SynthSettingsC
{
    std::uint32_t uiRows = 1000;    ///< row 0 looks down most
    std::uint32_t uiColumns = 2000; ///< clockwise, seen from above
    std::uint64_t ullSeed = 1;
    double dRangeNoiseM = 0.0005; ///< deviation of ranges of middling strength
    ScanFormatC oFormat;
};

/// Why a direction has a point, or has none.
enum class AnswerT
{
    Point,
    Nothing, ///< window, open end of the corridor, too far
    TooWeak, ///< black glass, grazing or far surfaces
    DropOut, ///< for no reason
};

class SynthScannerC
{
public:
    explicit SynthScannerC(const SynthSettingsC& settings);

    /// What the header says: the pose in the world, the instrument's height over the floor and, when the
    /// format has a grid, its largest indices.
    SIO::QsbScanInfoC GetInfo() const noexcept;

    /// Measures in one direction. The position is in the scanner's own frame, z up; elements that the format
    /// does not have stay as they are.
    AnswerT Measure(std::uint32_t uiRow, std::uint32_t uiColumn, ScanPointC& point) const noexcept;

private:
    Vec3C DirectionOf(std::uint32_t uiRow, std::uint32_t uiColumn) const noexcept;

    SynthSettingsC m_oSettings;
    SceneC m_oScene;
    FrameC m_oStand; ///< the scanner in the room
};

} // namespace Tool
