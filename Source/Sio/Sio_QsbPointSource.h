// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the points come from when a file is written: the mirror image of the point iterator. A source hands
// out the getters of the current point, every value as a double, so that a writer with more precision than
// the plain record (float intensities, negative ones) loses nothing on the way to the element encoders.
// Without locks.
#pragma once

#include "Sio/Sio_QsbPoint.h"

namespace SIO {

/// The elements of one point to be written. An element that the point does not have stays at the neutral
/// value.
class QsbPointGetterI
{
public:
    virtual ~QsbPointGetterI() = default;
    virtual void GetPosition(double& x, double& y, double& z) const = 0;
    virtual double GetIntensity() const { return 0.0; }
    virtual double GetLevelOfNoise() const { return 0.0; }

    /// Four colour channels: red, green, blue and one that has no meaning in the format, written as 255.
    virtual void GetColor(double& red, double& green, double& blue, double& fourth) const
    {
        red = green = blue = 0.0;
        fourth = 255.0;
    }

    virtual void GetGridIndex(double& first, double& second) const { first = second = 0.0; }
};

/// The getters of a QsbPointC, which is not owned. The point must have been set.
class QsbPointGetterC final : public QsbPointGetterI
{
public:
    void SetPoint(const QsbPointC* poPoint) noexcept { m_poQsbPoint = poPoint; }

    void GetPosition(double& x, double& y, double& z) const override
    {
        x = m_poQsbPoint->x;
        y = m_poQsbPoint->y;
        z = m_poQsbPoint->z;
    }

    double GetIntensity() const override { return m_poQsbPoint->intensity; }
    double GetLevelOfNoise() const override { return m_poQsbPoint->levelOfNoise; }

    void GetColor(double& red, double& green, double& blue, double& fourth) const override
    {
        red = m_poQsbPoint->red;
        green = m_poQsbPoint->green;
        blue = m_poQsbPoint->blue;
        fourth = 255.0;
    }

    void GetGridIndex(double& first, double& second) const override
    {
        first = m_poQsbPoint->gridIndex0;
        second = m_poQsbPoint->gridIndex1;
    }

private:
    const QsbPointC* m_poQsbPoint = nullptr;
};

/// Points to be written, one after another. Never deleted through this interface.
class QsbPointSourceI
{
public:
    /// Moves on to the next point.
    virtual void Advance() = 0;

    /// The getters of the current point; valid until the next call of either operation.
    virtual const QsbPointGetterI& Current() = 0;

protected:
    ~QsbPointSourceI() = default;
};

/// Walks an array of QsbPointC that the caller owns. The end is not checked.
class ArrayBasedPointSourceC final : public QsbPointSourceI
{
public:
    explicit ArrayBasedPointSourceC(const QsbPointC* poFirst) noexcept : m_poCursor(poFirst) {}

    void Advance() override { ++m_poCursor; }

    const QsbPointGetterI& Current() override
    {
        m_oGetter.SetPoint(m_poCursor);
        return m_oGetter;
    }

    /// The record that is read next.
    const QsbPointC* GetCursor() const noexcept { return m_poCursor; }

    /// Moves on by `nPoints` records that were read by other means.
    void Skip(std::size_t nPoints) noexcept { m_poCursor += nPoints; }

private:
    const QsbPointC* m_poCursor;
    QsbPointGetterC m_oGetter;
};

} // namespace SIO
