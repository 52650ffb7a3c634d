// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A small host: opens a scan, prints what it holds, reads every point and says how fast that went. It needs the
// public header and a C++11 compiler only.
//
//   read_scan FILE        exit code 0 when every point was read, 1 when the file cannot be read, 2 on wrong usage

#include <ScanReader/QsbReader.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <limits>

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

namespace {

/// What the points themselves say, gathered batch by batch. A coordinate that is not a number changes nothing.
struct Summary
{
    std::uint64_t points = 0;
    double low[3], high[3];
    unsigned lowIntensity = 65535, highIntensity = 0;

    Summary()
    {
        std::fill(low, low + 3, std::numeric_limits<double>::infinity());
        std::fill(high, high + 3, -std::numeric_limits<double>::infinity());
    }

    void Add(const QsbPoint& point)
    {
        const double position[3] = {point.x, point.y, point.z};
        for (int axis = 0; axis < 3; ++axis) {
            if (position[axis] < low[axis]) low[axis] = position[axis];
            if (position[axis] > high[axis]) high[axis] = position[axis];
        }
        lowIntensity = std::min<unsigned>(lowIntensity, point.intensity);
        highIntensity = std::max<unsigned>(highIntensity, point.intensity);
        ++points;
    }
};

void PrintHeader(QsbReader& reader)
{
    std::cout << "points             " << reader.GetNumPoints() << '\n';
    std::uint64_t rows = 0, columns = 0;
    if (reader.GetGridSize(rows, columns))
        std::cout << "grid               " << rows << " x " << columns << '\n';
    else
        std::cout << "grid               none\n";
    std::cout << "instrument height  " << reader.GetInstrumentHeight() << '\n'
              << "carries            position, intensity" << (reader.HasNoiseRatio() ? ", level of noise" : "")
              << (reader.HasGrid() ? ", grid index" : "") << (reader.HasColor() ? ", colour" : "") << '\n';

    double pose[16];
    reader.GetTransformation(pose);
    for (int row = 0; row < 4; ++row) {
        std::cout << (row == 0 ? "pose              " : "                  ");
        for (int column = 0; column < 4; ++column) std::cout << ' ' << std::setw(12) << pose[4 * row + column];
        std::cout << '\n';
    }
}

/// Reads from where the iterator stands to the end of the file. Returns false when a batch cannot be read; what was
/// read until then is in the summary.
bool ReadPoints(QsbReader& reader, Summary& summary, double& seconds)
{
    typedef std::chrono::steady_clock Clock;
    QsbReadIterator batch;
    for (;;) {
        std::uint64_t count = 0;
        const Clock::time_point start = Clock::now();
        const int result = reader.Read(batch, count);
        seconds += std::chrono::duration<double>(Clock::now() - start).count();
        if (result != 0) return false;
        if (count == 0) return true;
        const QsbPoint* points = batch.GetPoints();
        std::for_each(points, points + count, [&summary](const QsbPoint& point) { summary.Add(point); });
    }
}

void PrintSummary(const Summary& summary, double seconds)
{
    std::cout << "read               " << summary.points << " points";
    if (seconds > 0 && summary.points > 0)
        std::cout << ", " << std::setprecision(3) << static_cast<double>(summary.points) / seconds / 1e6
                  << " million points/s" << std::setprecision(6);
    std::cout << '\n';
    if (summary.points == 0) return;
    for (int axis = 0; axis < 3; ++axis)
        std::cout << "xyz"[axis] << "                  " << summary.low[axis] << " to " << summary.high[axis] << '\n';
    std::cout << "intensity          " << summary.lowIntensity << " to " << summary.highIntensity << '\n';
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::cerr << "usage: read_scan FILE\n";
        return 2;
    }
    QsbReader reader;
    if (reader.Open(argv[1]) != 0) {
        std::cerr << argv[1] << ": " << reader.RetMsg() << '\n';
        return 1;
    }
    PrintHeader(reader);
    Summary summary;
    double seconds = 0;
    const bool complete = ReadPoints(reader, summary, seconds);
    PrintSummary(summary, seconds);
    if (!complete) {
        std::cerr << argv[1] << ": " << reader.RetMsg() << " (after " << summary.points << " points)\n";
        return 1;
    }
    reader.Close();
    return 0;
}
