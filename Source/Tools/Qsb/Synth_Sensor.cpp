// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The model behind the simulated measurements.
#include "Tools/Qsb/Synth_Sensor.h"

#include "Sio/Sio_QsbFileFormat.h"

#include <algorithm>
#include <cmath>

namespace Tool {

using namespace SIO::QsbFormat;

double AmplitudeOf(double reflectance, double rangeM, double incidence) noexcept
{
    // Close up the optics see less of the spot, so that the square law holds from some metres on only.
    constexpr double middle = 4.0;
    return reflectance * incidence * (middle * middle) / (middle * middle + rangeM * rangeM);
}

double RangeDeviation(double deviation, double amplitude) noexcept
{
    return deviation * std::sqrt(0.25 / std::max(amplitude, s_dWeakestAmplitude));
}

double EncodedIntensity(std::uint32_t uiType, double amplitude) noexcept
{
    const double share = std::clamp(amplitude, 0.0, 1.0);
    switch (uiType) {
    case s_uiTypeInt16:
        return std::floor(share * 4095.0 + 0.5) - 2048.0;
    case s_uiTypeFloat:
        return static_cast<double>(static_cast<float>(share));
    default:
        return std::floor(share * 65535.0 + 0.5);
    }
}

double EncodedNoise(std::uint32_t uiType, double deviationM) noexcept
{
    switch (uiType) {
    case s_uiTypeUInt8:
        return std::clamp(std::floor(deviationM * 5e4 + 0.5), 0.0, 255.0);
    case s_uiTypeFloat:
        return static_cast<double>(static_cast<float>(deviationM * 1e3));
    default:
        return std::clamp(std::floor(deviationM * 1e6 + 0.5), 0.0, 65535.0);
    }
}

} // namespace Tool
