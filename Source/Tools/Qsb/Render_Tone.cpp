// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Limits from percentiles, and the ramp.
#include "Tools/Qsb/Render_Tone.h"

#include "Sio/Sio_Truncate.h"

#include <algorithm>
#include <vector>

namespace Tool {

namespace {

constexpr std::size_t s_nMostSamples = 1000000; ///< more would say nothing new and cost memory
constexpr double s_dTail = 0.01;

// The ramp's corners, equally far apart: even steps in brightness, and told apart by the colour-blind too.
constexpr double s_aadRamp[][3] = {{30, 10, 70},   {52, 52, 122},  {45, 98, 140}, {32, 140, 140},
                                   {60, 178, 112}, {140, 208, 70}, {240, 228, 50}};
constexpr std::size_t s_nRampSteps = std::size(s_aadRamp) - 1;

float ScalarOf(std::uint32_t uiValue) noexcept
{
    return std::bit_cast<float>(uiValue);
}

std::vector<float> SampleScalars(const PictureC& picture)
{
    const std::size_t nStep = picture.GetPixelCount() / s_nMostSamples + 1;
    std::vector<float> samples;
    for (std::size_t i = 0; i < picture.GetPixelCount(); i += nStep) {
        if (!picture.IsEmpty(i)) samples.push_back(ScalarOf(picture.GetValue(i)));
    }
    // A picture with few points may have none on the sampled pixels.
    for (std::size_t i = 0; samples.empty() && i < picture.GetPixelCount(); ++i) {
        if (!picture.IsEmpty(i)) samples.push_back(ScalarOf(picture.GetValue(i)));
    }
    return samples;
}

float Percentile(std::vector<float>& samples, double share)
{
    const auto nAt = static_cast<std::ptrdiff_t>(share * static_cast<double>(samples.size() - 1) + 0.5);
    std::nth_element(samples.begin(), samples.begin() + nAt, samples.end());
    return samples[static_cast<std::size_t>(nAt)];
}

std::uint8_t Byte(double value) noexcept
{
    return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

RgbaT Ramp(double share) noexcept
{
    const double at = share * static_cast<double>(s_nRampSteps);
    const std::size_t nStep = std::min(static_cast<std::size_t>(at), s_nRampSteps - 1);
    const double within = at - static_cast<double>(nStep);
    RgbaT rgba{0, 0, 0, 255};
    for (std::size_t i = 0; i < 3; ++i) {
        rgba[i] = Byte(s_aadRamp[nStep][i] + within * (s_aadRamp[nStep + 1][i] - s_aadRamp[nStep][i]));
    }
    return rgba;
}

} // namespace

std::uint32_t ColorPixel(const double (&color)[3]) noexcept
{
    std::uint32_t uiValue = 0;
    for (int i = 0; i < 3; ++i) {
        uiValue |= static_cast<std::uint32_t>(SIO::TruncateToLowBits<std::uint8_t>(color[i])) << (8 * i);
    }
    return uiValue;
}

ToneC::ToneC(ToneKindT eKind, const PictureC& picture) : m_eKind(eKind)
{
    if (eKind == ToneKindT::Color) return;
    std::vector<float> samples = SampleScalars(picture);
    if (samples.empty()) return;
    m_dLow = Percentile(samples, s_dTail);
    m_dHigh = Percentile(samples, 1.0 - s_dTail);
    if (m_dLow < m_dHigh) return;
    // Nearly all are alike: then the few others are worth seeing.
    const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
    m_dLow = *low;
    m_dHigh = *high;
}

RgbaT ToneC::Show(const PictureC& picture, std::size_t nPixel) const noexcept
{
    if (picture.IsEmpty(nPixel)) return {0, 0, 0, 0};
    const std::uint32_t uiValue = picture.GetValue(nPixel);
    if (m_eKind == ToneKindT::Color) {
        return {static_cast<std::uint8_t>(uiValue), static_cast<std::uint8_t>(uiValue >> 8),
                static_cast<std::uint8_t>(uiValue >> 16), 255};
    }
    const double span = m_dHigh - m_dLow;
    const double share = span > 0.0 ? std::clamp((double{ScalarOf(uiValue)} - m_dLow) / span, 0.0, 1.0) : 0.5;
    if (m_eKind == ToneKindT::Ramp) return Ramp(share);
    const std::uint8_t uiGrey = Byte(255.0 * share);
    return {uiGrey, uiGrey, uiGrey, 255};
}

} // namespace Tool
