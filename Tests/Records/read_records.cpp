// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A host that knows the public header and nothing else of ours, in C++11: reads every scan that FOLDER/list.txt names, two
// at a time in two threads, and prints one line for each, with what the file says and a checksum over every field of every
// point. The lines are the same on every platform and whatever the compiler; records.txt holds them.
//
//   read_records FOLDER

#include <ScanReader/QsbReader.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

static_assert(__cplusplus == 201103L, "the host is compiled as C++11, so that the public header has to be");

namespace {

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

/// FNV-1a over little-endian numbers. A number that is none counts as one and the same.
class Checksum
{
public:
    void Add(std::uint64_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i) {
            m_value ^= (value >> (8 * i)) & 0xFF;
            m_value *= 0x100000001B3u;
        }
    }

    void Add(double value)
    {
        std::uint64_t bits = std::uint64_t(0x7FF80000) << 32;
        if (value == value) std::memcpy(&bits, &value, sizeof bits);
        Add(bits, 8);
    }

    void Add(const QsbPoint& point)
    {
        Add(point.x);
        Add(point.y);
        Add(point.z);
        Add(point.red, 1);
        Add(point.green, 1);
        Add(point.blue, 1);
        Add(point.intensity, 2);
        Add(point.levelOfNoise, 2);
        Add(point.gridIndex0, 4);
        Add(point.gridIndex1, 4);
    }

    std::string Text() const
    {
        char text[17];
        std::snprintf(text, sizeof text, "%08lx%08lx", static_cast<unsigned long>(m_value >> 32),
                      static_cast<unsigned long>(m_value & 0xFFFFFFFF));
        return text;
    }

private:
    std::uint64_t m_value = 0xCBF29CE484222325u;
};

std::string Facts(QsbReader& reader)
{
    std::uint64_t rows = 0, columns = 0;
    reader.GetGridSize(rows, columns);
    double matrix[16];
    reader.GetTransformation(matrix);
    Checksum sum;
    for (const double element : matrix) sum.Add(element);
    sum.Add(reader.GetInstrumentHeight());
    const int content = (reader.HasNoiseRatio() ? 1 : 0) + (reader.HasGrid() ? 2 : 0) + (reader.HasColor() ? 4 : 0);
    return std::to_string(reader.GetNumPoints()) + " points, grid " + std::to_string(rows) + " x " +
           std::to_string(columns) + ", content " + std::to_string(content) + ", pose " + sum.Text();
}

std::string Records(QsbReader& reader)
{
    QsbReadIterator batch;
    Checksum sum;
    std::uint64_t delivered = 0, count = 0;
    while (reader.Read(batch, count) == 0 && count > 0) {
        for (std::uint64_t i = 0; i < count; ++i) sum.Add(*batch.GetPoint(i));
        delivered += count;
    }
    return std::to_string(delivered) + " read, " + sum.Text() + ", " + reader.RetMsg();
}

std::string Describe(const std::string& path)
{
    QsbReader reader;
    if (reader.Open(path.c_str()) != 0) return reader.RetMsg();
    return Facts(reader) + ", " + Records(reader);
}

/// A scan of the list, and what was found in it.
struct Scan
{
    std::string name;
    std::string said;
};

std::vector<Scan> ReadList(const std::string& folder)
{
    std::ifstream list((folder + "list.txt").c_str(), std::ios::binary);
    std::vector<Scan> scans;
    for (std::string name; std::getline(list, name);) scans.push_back(Scan{name, ""});
    return scans;
}

/// Reads every other scan from `first` on.
void DescribeHalf(const std::string& folder, std::vector<Scan>& scans, std::size_t first)
{
    for (std::size_t i = first; i < scans.size(); i += 2) scans[i].said = Describe(folder + scans[i].name);
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) return 2;
    const std::string folder = std::string(argv[1]) + "/";
    std::vector<Scan> scans = ReadList(folder);
    std::thread other([&] { DescribeHalf(folder, scans, 1); });
    DescribeHalf(folder, scans, 0);
    other.join();
    for (const Scan& scan : scans) std::printf("%s: %s\n", scan.name.c_str(), scan.said.c_str());
    return scans.empty() ? 1 : 0;
}
