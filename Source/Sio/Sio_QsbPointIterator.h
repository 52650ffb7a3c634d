// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the points of a batch go: an iterator hands out a modifier for the point to be written next. The
// array based one walks records that the caller owns and that must be at least as many as a batch delivers;
// it does not check the end. Without locks.
#pragma once

#include "Sio/Sio_QsbPoint.h"

namespace SIO {

/// Targets of decoded points, one after another. Never deleted through this interface.
class QsbPointIteratorI
{
public:
    /// Moves on to the next point.
    virtual void Advance() = 0;

    /// The modifier of the current point; valid until the next call of either operation.
    virtual QsbPointModifierI& Current() = 0;

protected:
    ~QsbPointIteratorI() = default;
};

/// Walks an array of `PointT`, which is neither owned nor freed.
template<typename PointT, typename ModifierT>
class ArrayBasedPointIteratorC : public QsbPointIteratorI
{
public:
    /// Starts at `poFirst`, the first record of the array.
    explicit ArrayBasedPointIteratorC(PointT* poFirst) noexcept : m_poFirst(poFirst), m_poCursor(poFirst) {}

    ArrayBasedPointIteratorC(const ArrayBasedPointIteratorC&) = delete;
    ArrayBasedPointIteratorC& operator=(const ArrayBasedPointIteratorC&) = delete;

    void Advance() override { ++m_poCursor; }

    QsbPointModifierI& Current() override
    {
        m_oModifier.SetPoint(m_poCursor);
        return m_oModifier;
    }

    virtual ~ArrayBasedPointIteratorC() { m_poFirst = m_poCursor = nullptr; }

    /// Goes back to the first record, as before every batch.
    void Reset() noexcept { m_poCursor = m_poFirst; }

    /// The record that is written next.
    PointT* GetCursor() const noexcept { return m_poCursor; }

    /// Moves on by `nPoints` records that were written by other means.
    void Skip(std::size_t nPoints) noexcept { m_poCursor += nPoints; }

private:
    PointT* m_poFirst;
    PointT* m_poCursor;
    ModifierT m_oModifier;
};

using QsbPointArrayIteratorC = ArrayBasedPointIteratorC<QsbPointC, QsbPointModifierC>;

} // namespace SIO
