// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The point record and the modifier through which the elements of a stored point are written into one.
// Element decoders know the modifier interface only, never the record, so a caller with a modifier of its own
// can receive points in any form. Without locks: a modifier and its point belong to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace SIO {

/// One decoded point, 40 bytes. The exported point record has the same layout.
struct QsbPointC
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    // One byte of alignment.
    std::uint16_t intensity = 0;
    std::uint16_t levelOfNoise = 0;
    std::uint32_t gridIndex0 = 0;
    std::uint32_t gridIndex1 = 0;
};

static_assert(sizeof(QsbPointC) == 40 && offsetof(QsbPointC, intensity) == 28 &&
              offsetof(QsbPointC, gridIndex1) == 36);
static_assert(std::is_trivially_copyable_v<QsbPointC>);

/// Receives the elements of one point. An element that is of no interest is ignored by not overriding its
/// operation.
class QsbPointModifierI
{
public:
    virtual ~QsbPointModifierI() = default;
    virtual void SetPosition(const double& /*x*/, const double& /*y*/, const double& /*z*/) {}
    virtual void SetIntensity(const double& /*intensity*/) {}
    virtual void SetLevelOfNoise(const double& /*levelOfNoise*/) {}
    virtual void SetColor(const double& /*red*/, const double& /*green*/, const double& /*blue*/) {}
    virtual void SetGridIndex(const double& /*first*/, const double& /*second*/) {}
};

/// Writes into a QsbPointC. Integer fields take the low bits of the value truncated toward zero (256.0 as a
/// colour is 0, -1.0 as an intensity 65535). Without a point an operation reports an assertion and writes
/// nothing.
class QsbPointModifierC final : public QsbPointModifierI
{
public:
    /// Aims at `poPoint`, which is not owned and must live until the next call of this operation.
    void SetPoint(QsbPointC* poPoint) noexcept { m_poQsbPoint = poPoint; }

    void SetPosition(const double& x, const double& y, const double& z) override;
    void SetIntensity(const double& intensity) override;
    void SetLevelOfNoise(const double& levelOfNoise) override;
    void SetColor(const double& red, const double& green, const double& blue) override;
    void SetGridIndex(const double& first, const double& second) override;

private:
    bool HasPoint() const;

    QsbPointC* m_poQsbPoint = nullptr;
};

} // namespace SIO
