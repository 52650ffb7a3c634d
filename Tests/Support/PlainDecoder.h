// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A second, slow reading of what the bytes of a stored point mean, sharing no code with the library: the
// oracle for decoding and encoding. Straight from the description of the format, one byte at a time.
#pragma once

#include "Support/QsbBytes.h"

#include <cstdint>
#include <random>
#include <vector>

namespace Support {

/// Which encodings a stored point has, as type codes; 0 where the element is missing.
struct Layout
{
    std::uint32_t position;
    std::uint32_t intensity;
    std::uint32_t noise;
    std::uint32_t grid;
    std::uint32_t color;
};

/// The elements of a point as doubles. Missing ones stay 0.
struct PlainPoint
{
    double x = 0, y = 0, z = 0;
    double intensity = 0, noise = 0;
    double red = 0, green = 0, blue = 0, fourth = 255;
    double grid0 = 0, grid1 = 0;
};

/// Every layout with this position type: 4 x 4 x 3 x 2 of them.
std::vector<Layout> AllLayouts(std::uint32_t position);

std::size_t RecordBytes(const Layout& layout);

/// The header entries for `layout`, largest tag first: the order must not matter.
void AddElements(QsbBytes& file, const Layout& layout);

PlainPoint PlainDecode(const Layout& layout, const std::uint8_t* record);
BytesT PlainEncode(const Layout& layout, const PlainPoint& point);

/// Maps the position by a row-major 4 x 4 matrix, every intermediate result rounded to double.
void PlainTransform(const std::vector<double>& matrix, PlainPoint& point);

/// The whole part modulo 2^bits; 0 for what a signed 64-bit integer cannot hold.
std::uint64_t LowBits(double value, unsigned bits);

/// Equal bit for bit, or both not a number.
bool IsSame(double a, double b);

/// Random bytes, with now and then a run of 0xFF or 0 so that NaN, infinities and zeros come up.
BytesT RandomBytes(std::mt19937& random, std::size_t size);

/// A random choice of numbers that conversions stumble over: fractions, signs, limits, infinities, NaN.
double OddNumber(std::mt19937& random);

} // namespace Support
