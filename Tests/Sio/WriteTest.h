// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests of the writing side share: definitions, points to write, and the bytes that a written block
// must have.
#pragma once

#include "RecordingModifier.h"
#include "ScanTest.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"

#include <bit>
#include <limits>
#include <vector>

namespace SioTest {

/// Fills a definition with the elements of a layout.
inline void Define(SIO::PointDefinitionC& definition, const Support::Layout& layout)
{
    const std::uint32_t types[] = {layout.position, layout.intensity, layout.noise, layout.grid,
                                   layout.color};
    for (std::uint32_t i = 0; i < 5; ++i) {
        if (types[i] != 0) definition.Add(SIO::PointDefinitionC::CreateElement(1u << i, types[i]));
    }
}

/// A vector of points as the source of what is written.
class PlainSource final : public SIO::QsbPointSourceI
{
public:
    explicit PlainSource(std::vector<Support::PlainPoint> points) : m_points(std::move(points)) {}

    void Advance() override { ++m_next; }

    const SIO::QsbPointGetterI& Current() override
    {
        m_getter.point = m_points.at(m_next);
        return m_getter;
    }

private:
    std::vector<Support::PlainPoint> m_points;
    std::size_t m_next = 0;
    PlainGetter m_getter;
};

/// The points that Support::SmallPoints has the bytes of.
inline PlainSource SmallSource(std::uint32_t points, std::uint32_t first = 0)
{
    std::vector<Support::PlainPoint> vector(points);
    for (std::uint32_t i = 0; i < points; ++i) {
        const double x = first + i;
        vector[i].x = x;
        vector[i].y = x + 0.25;
        vector[i].z = x + 0.5;
        vector[i].intensity = 100 + x;
    }
    return PlainSource(std::move(vector));
}

/// The entries that every new block gets, up to its elements, when the strategy was told nothing.
inline void AddNeutralEntries(Support::QsbBytes& file)
{
    constexpr double most = std::numeric_limits<double>::max();
    for (std::uint32_t tag = 2; tag <= 4; ++tag)
        file.DoubleEntry(tag, most);
    for (std::uint32_t tag = 5; tag <= 7; ++tag)
        file.DoubleEntry(tag, -most);
    file.Matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
        .Entry(7, 24)
        .Entry(7, 25)
        .DoubleEntry(26, 0);
}

/// The file that writing `points` small points into a new file must give.
inline Support::QsbBytes WrittenSmallScan(std::uint32_t points, std::uint32_t id = 1)
{
    Support::QsbBytes file;
    file.Block(id);
    AddNeutralEntries(file);
    file.Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(points));
    return file;
}

class WriteTest : public ScanTest
{
protected:
    WriteTest() { Define(small, {40, 5, 0, 0, 0}); }

    std::string Path() { return folder.Path("scan.qsb"); }
    Support::BytesT File() { return Support::ReadFile(Path()); }

    /// Opens a new file for writing, with the small definition given to the strategy.
    void Create()
    {
        ASSERT_TRUE(scan.Open(Path(), false, true));
        scan.strategy.SetPointDefinition(&small);
    }

    /// Opens a file with these bytes for reading and writing.
    void Reopen(const Support::QsbBytes& file)
    {
        folder.Write("scan.qsb", file);
        ASSERT_TRUE(scan.Open(Path(), true, true));
    }

    bool Write(std::uint32_t points, std::uint32_t first = 0)
    {
        PlainSource source = SmallSource(points, first);
        return scan.container.WritePoints(source, points, scan.strategy);
    }

    const SIO::QsbBlockC& Block(std::uint64_t i) { return *scan.container.GetBlocks().Get(i); }

    SIO::PointDefinitionC small; ///< the elements of the small points
};

} // namespace SioTest
