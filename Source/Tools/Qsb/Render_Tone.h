// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// From a finished picture's values to what is seen: scalars are stretched between two robust limits and shown
// in grey or along a colour ramp, colours as they are, empty pixels transparent.
#pragma once

#include "Tools/Qsb/Render_Picture.h"

#include <array>
#include <bit>

namespace Tool {

/// Scalars stand in a picture as the bits of a float, colours as red, green and blue in the low bytes.
inline std::uint32_t ScalarPixel(double value) noexcept
{
    return std::bit_cast<std::uint32_t>(static_cast<float>(value));
}
std::uint32_t ColorPixel(const double (&color)[3]) noexcept;

using RgbaT = std::array<std::uint8_t, 4>;

enum class ToneKindT
{
    Grey,
    Ramp, ///< dark blue, green, yellow
    Color,
};

class ToneC
{
public:
    /// Takes the limits from the picture: one in a hundred pixels is darker than the lower, one brighter than
    /// the upper.
    ToneC(ToneKindT eKind, const PictureC& picture);

    double GetLow() const noexcept { return m_dLow; }
    double GetHigh() const noexcept { return m_dHigh; }

    RgbaT Show(const PictureC& picture, std::size_t nPixel) const noexcept;

private:
    ToneKindT m_eKind;
    double m_dLow = 0.0, m_dHigh = 0.0;
};

} // namespace Tool
