// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Random numbers that are the same everywhere: a small counter generator in integers, and what is made of it
// with exact arithmetic. The standard library's distributions differ between its makers. Not for secrets.
#pragma once

#include <cstdint>

namespace Tool {

class RandomC
{
public:
    /// Streams of different seeds or numbers have nothing to do with one another.
    explicit RandomC(std::uint64_t seed, std::uint64_t stream = 0) noexcept
        : m_ullState(Mix(seed + s_ullStep) ^ Mix(~stream))
    {}

    std::uint64_t Next() noexcept { return Mix(m_ullState += s_ullStep); }

    /// Uniform in [0, 1).
    double Uniform() noexcept { return static_cast<double>(Next() >> 11) * 0x1p-53; }

    double Uniform(double from, double to) noexcept { return from + (to - from) * Uniform(); }

    /// Normal, mean 0 and deviation 1, as the sum of twelve uniform numbers: never beyond 6 either way.
    double Normal() noexcept
    {
        std::uint64_t sum = 0;
        for (int draw = 0; draw < 3; ++draw) {
            const std::uint64_t bits = Next();
            sum += (bits & 0xFFFF) + (bits >> 16 & 0xFFFF) + (bits >> 32 & 0xFFFF) + (bits >> 48);
        }
        return (static_cast<double>(sum) - 6.0 * 65535.0) / 65536.0;
    }

private:
    static constexpr std::uint64_t s_ullStep = 0x9E3779B97F4A7C15;

    /// Every bit of the result depends on every bit of `z`.
    static std::uint64_t Mix(std::uint64_t z) noexcept
    {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    std::uint64_t m_ullState;
};

/// A number in [0, 1) that belongs to a place, such as a board of a floor.
inline double HashedUniform(std::int64_t a, std::int64_t b) noexcept
{
    return RandomC(static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b)).Uniform();
}

} // namespace Tool
