// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writes scans of every kind into a folder, the same bytes on every platform, and list.txt with their names
// (UTF-8, one on a line): every combination of element encodings, in either kind of block, with random bits
// that include numbers that are none; batches that end on and around the boundaries of a reader's own; names
// outside ASCII and behind a long path; points beyond 4 GiB; files that cannot be read or only in part.
//
//   make_scans FOLDER
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Support/PlainDecoder.h"
#include "Support/QsbBytes.h"

#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::Layout;
using Support::QsbBytes;

class ScanWriter
{
public:
    explicit ScanWriter(const char* folder) : m_folder(BSS::HAL::WidePath(folder)) {}

    void Write(const std::string& name, const BytesT& bytes)
    {
        WriteFile(name, {{0, bytes}});
        AddToList(name);
    }
    void Write(const std::string& name, const QsbBytes& file) { Write(name, file.Get()); }

    /// What lies between the two is a hole where the file system has holes.
    void WriteApart(const std::string& name, const BytesT& front, std::uint64_t offset, const BytesT& rest)
    {
        WriteFile(name, {{0, front}, {offset, rest}});
        AddToList(name);
    }

    /// Makes a folder in the writer's own, or in one made before.
    void MakeFolder(const std::string& name) const
    {
        boost::filesystem::create_directory(BSS::HAL::FilesystemPath(Path(name)));
    }

    void WriteList() const { WriteFile("list.txt", {{0, m_list}}); }

private:
    struct Portion
    {
        std::uint64_t offset;
        BytesT bytes;
    };

    std::wstring Path(const std::string& name) const
    {
        return BSS::HAL::JoinPath(m_folder, BSS::HAL::WidePath(name));
    }

    void AddToList(const std::string& name)
    {
        m_list.insert(m_list.end(), name.begin(), name.end());
        m_list.push_back('\n');
    }

    void WriteFile(const std::string& name, const std::vector<Portion>& portions) const
    {
        std::FILE* const file = BSS::HAL::OpenStream(Path(name), "wb");
        if (file == nullptr) throw std::runtime_error("cannot write " + name);
        bool written = true;
        for (const auto& [offset, bytes] : portions) {
            written = written && BSS::HAL::SeekStream(file, offset) &&
                      (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size());
        }
        if (std::fclose(file) != 0 || !written) throw std::runtime_error("cannot write " + name);
    }

    std::wstring m_folder;
    BytesT m_list;
};

// No distribution of the standard library, whose results may differ.
BytesT RandomBits(std::mt19937& random, std::size_t size)
{
    BytesT bytes;
    while (bytes.size() < size)
        Support::Put(bytes, static_cast<std::uint32_t>(random()));
    bytes.resize(size);
    return bytes;
}

QsbBytes LayoutScan(const Layout& layout, std::uint32_t block, std::uint32_t points, std::mt19937& random)
{
    QsbBytes file;
    file.Block(block);
    // A turn, a shift and a projective row, so that the divide counts.
    file.Matrix({0.8, -0.6, 0, 1234.5, 0.6, 0.8, 0, -9876.25, 0, 0, 1, 0.1, 1e-9, 0, 1e-7, 1});
    file.Entry(7, 24, 6).Entry(7, 25, 9).DoubleEntry(26, 1.625);
    Support::AddElements(file, layout);
    return file.Data(RandomBits(random, points * Support::RecordBytes(layout)));
}

std::string NameOf(const Layout& layout, std::uint32_t block)
{
    return "position" + std::to_string(layout.position) + "-intensity" + std::to_string(layout.intensity) +
           "-noise" + std::to_string(layout.noise) + "-grid" + std::to_string(layout.grid) + "-color" +
           std::to_string(layout.color) + "-block" + std::to_string(block) + ".qsb";
}

void WriteEveryLayout(ScanWriter& writer)
{
    std::mt19937 random(20260101);
    std::uint32_t block = 1;
    for (const std::uint32_t position : {40u, 41u}) {
        for (const Layout& layout : Support::AllLayouts(position)) {
            writer.Write(NameOf(layout, block), LayoutScan(layout, block, 97, random));
            block = 4 - block; // 1 and 3 in turn
        }
    }
}

void WriteBatches(ScanWriter& writer)
{
    for (const std::uint32_t points : {0u, 1u, 9999u, 10000u, 10001u, 25003u})
        writer.Write("points" + std::to_string(points) + ".qsb", Support::SmallScan(points));
    writer.Write("rich.qsb", Support::RichScan(300));
}

void WriteNames(ScanWriter& writer)
{
    writer.Write("with space.qsb", Support::SmallScan(3));
    writer.Write("M\xC3\xBCller.qsb", Support::SmallScan(4));
    writer.Write("\xE6\xB8\xAC\xE9\x87\x8F.qsb", Support::SmallScan(5));
    writer.Write("\xF0\x9F\x93\x90.qsb", Support::SmallScan(6));
}

// The folder alone is longer than the 260 characters that some systems stop at.
void WriteBehindALongPath(ScanWriter& writer)
{
    std::string folder;
    for (const char letter : {'a', 'b', 'c'}) {
        folder += std::string(90, letter);
        writer.MakeFolder(folder);
        folder += '/';
    }
    writer.Write(folder + "scan.qsb", Support::SmallScan(7));
}

// A block without meaning is as large as its head can say, so that the next one begins beyond 4 GiB. Its data
// need not be read by anybody.
void WriteBeyond4GiB(ScanWriter& writer)
{
    constexpr std::uint32_t largest = 0xFFFFFFFF;
    const BytesT front = QsbBytes().Block(9).ClaimDataBytes(largest).Get();
    const BytesT scan = Support::SmallScan(8).Get();
    const std::size_t fileHeader = QsbBytes().Get().size();
    writer.WriteApart("beyond-4-GiB.qsb", front, front.size() + std::uint64_t{largest},
                      Support::Slice(scan, fileHeader, scan.size() - fileHeader));
}

void WriteDamaged(ScanWriter& writer)
{
    const BytesT whole = Support::SmallScan(25003).Get();
    writer.Write("torn.qsb", Support::Truncated(whole, whole.size() - 14 * 5001));
    writer.Write("torn-in-a-point.qsb", Support::Truncated(whole, whole.size() - 3));
    writer.Write("empty.qsb", BytesT());
    writer.Write("other.qsb", Bytes(0x46445025u, 1u, 2u, 3u));
    writer.Write("no-intensity.qsb", QsbBytes().Block(1).Entry(40, 100, 12).Data(BytesT(24)));
    writer.Write("no-elements.qsb", QsbBytes().Block(1));
    writer.Write("no-points.qsb", QsbBytes().Block(9));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    try {
        ScanWriter writer(argv[1]);
        WriteEveryLayout(writer);
        WriteBatches(writer);
        WriteNames(writer);
        WriteBehindALongPath(writer);
        WriteBeyond4GiB(writer);
        WriteDamaged(writer);
        writer.WriteList();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_scans: %s\n", error.what());
        return 1;
    }
    return 0;
}
