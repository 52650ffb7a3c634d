// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Deliberately without cleverness: this is what the clever code is compared with.
#include "Support/PlainDecoder.h"

#include <bit>
#include <cmath>
#include <limits>

namespace Support {

namespace {

double FloatAt(const std::uint8_t* bytes)
{
    const std::uint32_t bits =
        static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
        static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    return std::bit_cast<float>(bits);
}

double DoubleAt(const std::uint8_t* bytes)
{
    std::uint64_t bits = 0;
    for (int i = 7; i >= 0; --i)
        bits = bits * 256 + bytes[i];
    return std::bit_cast<double>(bits);
}

double Unsigned16At(const std::uint8_t* bytes)
{
    return bytes[0] + 256.0 * bytes[1];
}

double Unsigned32At(const std::uint8_t* bytes)
{
    return Unsigned16At(bytes) + 65536.0 * Unsigned16At(bytes + 2);
}

double Signed16At(const std::uint8_t* bytes)
{
    const double value = Unsigned16At(bytes);
    return value >= 32768 ? value - 65536 : value;
}

std::size_t SizeOfType(std::uint32_t type)
{
    switch (type) {
    case 2:
        return 1;
    case 4:
        return 2;
    case 5:
        return 2;
    case 7:
        return 4;
    case 8:
        return 4;
    case 21:
        return 4;
    case 23:
        return 8;
    case 40:
        return 12;
    case 41:
        return 24;
    default:
        return 0;
    }
}

double NumberOfType(std::uint32_t type, const std::uint8_t* bytes)
{
    switch (type) {
    case 2:
        return bytes[0];
    case 4:
        return Signed16At(bytes);
    case 5:
        return Unsigned16At(bytes);
    default:
        return FloatAt(bytes);
    }
}

void PutNumber(BytesT& bytes, std::uint32_t type, double value)
{
    switch (type) {
    case 2:
        Put(bytes, static_cast<std::uint8_t>(LowBits(value, 8)));
        break;
    // A signed number goes through 32 bits: beyond them nothing is left of it.
    case 4:
        Put(bytes,
            static_cast<std::uint16_t>(std::fabs(std::trunc(value)) < 2147483648.0 ? LowBits(value, 16) : 0));
        break;
    case 5:
        Put(bytes, static_cast<std::uint16_t>(LowBits(value, 16)));
        break;
    default:
        Put(bytes, static_cast<float>(value));
        break;
    }
}

} // namespace

std::vector<Layout> AllLayouts(std::uint32_t position)
{
    std::vector<Layout> layouts;
    for (const std::uint32_t intensity : {0u, 4u, 5u, 8u}) {
        for (const std::uint32_t noise : {0u, 2u, 5u, 8u}) {
            for (const std::uint32_t grid : {0u, 21u, 23u}) {
                for (const std::uint32_t color : {0u, 7u}) {
                    layouts.push_back({position, intensity, noise, grid, color});
                }
            }
        }
    }
    return layouts;
}

std::size_t RecordBytes(const Layout& layout)
{
    return SizeOfType(layout.position) + SizeOfType(layout.intensity) + SizeOfType(layout.noise) +
           SizeOfType(layout.grid) + SizeOfType(layout.color);
}

void AddElements(QsbBytes& file, const Layout& layout)
{
    if (layout.color != 0) file.Entry(layout.color, 104, SizeOfType(layout.color));
    if (layout.grid != 0) file.Entry(layout.grid, 103, SizeOfType(layout.grid));
    if (layout.noise != 0) file.Entry(layout.noise, 102, SizeOfType(layout.noise));
    if (layout.intensity != 0) file.Entry(layout.intensity, 101, SizeOfType(layout.intensity));
    if (layout.position != 0) file.Entry(layout.position, 100, SizeOfType(layout.position));
}

PlainPoint PlainDecode(const Layout& layout, const std::uint8_t* record)
{
    PlainPoint point;
    const bool isFloat = layout.position == 40;
    point.x = isFloat ? FloatAt(record) : DoubleAt(record);
    point.y = isFloat ? FloatAt(record + 4) : DoubleAt(record + 8);
    point.z = isFloat ? FloatAt(record + 8) : DoubleAt(record + 16);
    record += SizeOfType(layout.position);
    if (layout.intensity != 0) point.intensity = NumberOfType(layout.intensity, record);
    record += SizeOfType(layout.intensity);
    if (layout.noise != 0) point.noise = NumberOfType(layout.noise, record);
    record += SizeOfType(layout.noise);
    if (layout.grid == 21) point.grid0 = Unsigned16At(record);
    if (layout.grid == 21) point.grid1 = Unsigned16At(record + 2);
    if (layout.grid == 23) point.grid0 = Unsigned32At(record);
    if (layout.grid == 23) point.grid1 = Unsigned32At(record + 4);
    record += SizeOfType(layout.grid);
    if (layout.color == 0) return point;
    point.red = record[0];
    point.green = record[1];
    point.blue = record[2];
    return point;
}

BytesT PlainEncode(const Layout& layout, const PlainPoint& point)
{
    BytesT bytes;
    for (const double coordinate : {point.x, point.y, point.z}) {
        if (layout.position == 40) Put(bytes, static_cast<float>(coordinate));
        if (layout.position == 41) Put(bytes, coordinate);
    }
    if (layout.intensity != 0) PutNumber(bytes, layout.intensity, point.intensity);
    if (layout.noise != 0) PutNumber(bytes, layout.noise, point.noise);
    for (const double index : {point.grid0, point.grid1}) {
        if (layout.grid == 21) Put(bytes, static_cast<std::uint16_t>(LowBits(index, 16)));
        if (layout.grid == 23) Put(bytes, static_cast<std::uint32_t>(LowBits(index, 32)));
    }
    for (const double channel : {point.red, point.green, point.blue, point.fourth}) {
        if (layout.color != 0) Put(bytes, static_cast<std::uint8_t>(LowBits(channel, 8)));
    }
    return bytes;
}

void PlainTransform(const std::vector<double>& matrix, PlainPoint& point)
{
    // The volatile steps keep a compiler from fusing, reordering or widening any of them.
    volatile double rows[4];
    for (std::size_t i = 0; i < 4; ++i) {
        volatile double first = matrix[4 * i] * point.x;
        volatile double second = matrix[4 * i + 1] * point.y;
        volatile double third = matrix[4 * i + 2] * point.z;
        volatile double sum = first + second;
        sum = sum + third;
        rows[i] = sum + matrix[4 * i + 3];
    }
    point.x = rows[0] / rows[3];
    point.y = rows[1] / rows[3];
    point.z = rows[2] / rows[3];
}

std::uint64_t LowBits(double value, unsigned bits)
{
    const double limit = std::ldexp(1.0, 63);
    if (!(value >= -limit && value < limit)) return 0;
    const double range = std::ldexp(1.0, static_cast<int>(bits));
    const double rest = std::fmod(std::trunc(value), range);
    return static_cast<std::uint64_t>(rest < 0 ? rest + range : rest);
}

bool IsSame(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

BytesT RandomBytes(std::mt19937& random, std::size_t size)
{
    BytesT bytes;
    while (bytes.size() < size) {
        const auto choice = static_cast<std::uint32_t>(random() % 64);
        const std::size_t run = choice < 2 ? 8 : 1;
        const std::uint32_t value = choice == 0   ? 0xFF
                                    : choice == 1 ? 0
                                                  : static_cast<std::uint32_t>(random());
        bytes.insert(bytes.end(), run, static_cast<std::uint8_t>(value));
    }
    bytes.resize(size);
    return bytes;
}

double OddNumber(std::mt19937& random)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr double numbers[] = {0.0,
                                         -0.0,
                                         0.5,
                                         -0.5,
                                         0.999,
                                         -0.999,
                                         1.0,
                                         -1.0,
                                         127.0,
                                         128.0,
                                         254.9,
                                         255.0,
                                         255.9,
                                         256.0,
                                         257.5,
                                         -255.9,
                                         -256.0,
                                         32767.0,
                                         32767.9,
                                         32768.0,
                                         -32768.0,
                                         -32768.9,
                                         -32769.0,
                                         65535.0,
                                         65535.9,
                                         65536.0,
                                         65537.0,
                                         -65535.0,
                                         2147483647.0,
                                         2147483647.9,
                                         2147483648.0,
                                         -2147483648.0,
                                         -2147483648.9,
                                         -2147483649.0,
                                         4294967295.0,
                                         4294967295.9,
                                         4294967296.0,
                                         4294967301.0,
                                         -4294967295.0,
                                         9007199254740993.0,
                                         9223372036854774784.0,
                                         9223372036854775808.0,
                                         -9223372036854775808.0,
                                         -9223372036854777856.0,
                                         1.8446744073709552e19,
                                         1e30,
                                         -1e30,
                                         1e300,
                                         -1e300,
                                         1e-310,
                                         3.4e38,
                                         infinity,
                                         -infinity,
                                         std::numeric_limits<double>::quiet_NaN()};
    if (random() % 4 == 0) return std::uniform_real_distribution<double>(-200000, 200000)(random);
    return numbers[random() % std::size(numbers)];
}

} // namespace Support
