// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A point in the tool's own form: every element as the double that the file's encoding stands for, so that
// nothing is cut on the way from one file to another. With it the adapters that decode stored points into
// such points and encode them back.
#pragma once

#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbPointSource.h"

namespace Tool {

/// Elements that a file does not carry stay 0.
struct ScanPointC
{
    double x = 0.0, y = 0.0, z = 0.0;
    double dIntensity = 0.0;
    double dNoise = 0.0;
    double adColor[3] = {0.0, 0.0, 0.0}; ///< red, green, blue, 0 to 255
    double adGrid[2] = {0.0, 0.0};       ///< row, column
};

/// Receives a decoded point.
class ScanPointModifierC final : public SIO::QsbPointModifierI
{
public:
    void SetPoint(ScanPointC* poPoint) noexcept { m_poPoint = poPoint; }

    void SetPosition(const double& x, const double& y, const double& z) override
    {
        m_poPoint->x = x;
        m_poPoint->y = y;
        m_poPoint->z = z;
    }

    void SetIntensity(const double& intensity) override { m_poPoint->dIntensity = intensity; }
    void SetLevelOfNoise(const double& levelOfNoise) override { m_poPoint->dNoise = levelOfNoise; }

    void SetColor(const double& red, const double& green, const double& blue) override
    {
        m_poPoint->adColor[0] = red;
        m_poPoint->adColor[1] = green;
        m_poPoint->adColor[2] = blue;
    }

    void SetGridIndex(const double& first, const double& second) override
    {
        m_poPoint->adGrid[0] = first;
        m_poPoint->adGrid[1] = second;
    }

private:
    ScanPointC* m_poPoint = nullptr;
};

using ScanPointIteratorC = SIO::ArrayBasedPointIteratorC<ScanPointC, ScanPointModifierC>;

/// Gives a point to the encoders.
class ScanPointGetterC final : public SIO::QsbPointGetterI
{
public:
    void SetPoint(const ScanPointC* poPoint) noexcept { m_poPoint = poPoint; }

    void GetPosition(double& x, double& y, double& z) const override
    {
        x = m_poPoint->x;
        y = m_poPoint->y;
        z = m_poPoint->z;
    }

    double GetIntensity() const override { return m_poPoint->dIntensity; }
    double GetLevelOfNoise() const override { return m_poPoint->dNoise; }

    void GetColor(double& red, double& green, double& blue, double& fourth) const override
    {
        red = m_poPoint->adColor[0];
        green = m_poPoint->adColor[1];
        blue = m_poPoint->adColor[2];
        fourth = 255.0;
    }

    void GetGridIndex(double& first, double& second) const override
    {
        first = m_poPoint->adGrid[0];
        second = m_poPoint->adGrid[1];
    }

private:
    const ScanPointC* m_poPoint = nullptr;
};

/// Walks an array of points that are to be written.
class ScanPointSourceC final : public SIO::QsbPointSourceI
{
public:
    explicit ScanPointSourceC(const ScanPointC* poFirst) noexcept : m_poCursor(poFirst) {}

    void Advance() override { ++m_poCursor; }

    const SIO::QsbPointGetterI& Current() override
    {
        m_oGetter.SetPoint(m_poCursor);
        return m_oGetter;
    }

private:
    const ScanPointC* m_poCursor;
    ScanPointGetterC m_oGetter;
};

} // namespace Tool
