// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A modifier that keeps the doubles it is given, and a getter that gives doubles: points without the limits
// of the plain record.
#pragma once

#include "Sio/Sio_QsbPointSource.h"
#include "Support/PlainDecoder.h"

namespace SioTest {

class RecordingModifier final : public SIO::QsbPointModifierI
{
public:
    Support::PlainPoint point;
    unsigned calls = 0;

    void SetPosition(const double& x, const double& y, const double& z) override
    {
        ++calls;
        point.x = x;
        point.y = y;
        point.z = z;
    }

    void SetIntensity(const double& intensity) override
    {
        ++calls;
        point.intensity = intensity;
    }

    void SetLevelOfNoise(const double& levelOfNoise) override
    {
        ++calls;
        point.noise = levelOfNoise;
    }

    void SetColor(const double& red, const double& green, const double& blue) override
    {
        ++calls;
        point.red = red;
        point.green = green;
        point.blue = blue;
    }

    void SetGridIndex(const double& first, const double& second) override
    {
        ++calls;
        point.grid0 = first;
        point.grid1 = second;
    }
};

class PlainGetter final : public SIO::QsbPointGetterI
{
public:
    Support::PlainPoint point;

    void GetPosition(double& x, double& y, double& z) const override
    {
        x = point.x;
        y = point.y;
        z = point.z;
    }

    double GetIntensity() const override { return point.intensity; }
    double GetLevelOfNoise() const override { return point.noise; }

    void GetColor(double& red, double& green, double& blue, double& fourth) const override
    {
        red = point.red;
        green = point.green;
        blue = point.blue;
        fourth = point.fourth;
    }

    void GetGridIndex(double& first, double& second) const override
    {
        first = point.grid0;
        second = point.grid1;
    }
};

inline bool IsSamePoint(const Support::PlainPoint& a, const Support::PlainPoint& b)
{
    using Support::IsSame;
    return IsSame(a.x, b.x) && IsSame(a.y, b.y) && IsSame(a.z, b.z) && IsSame(a.intensity, b.intensity) &&
           IsSame(a.noise, b.noise) && IsSame(a.red, b.red) && IsSame(a.green, b.green) &&
           IsSame(a.blue, b.blue) && IsSame(a.grid0, b.grid0) && IsSame(a.grid1, b.grid1);
}

} // namespace SioTest
