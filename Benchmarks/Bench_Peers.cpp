// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The same points read by what people use otherwise, each from a file of its own format, all of them in the
// same rounds. Streaming means that a batch is used and forgotten; keeping all means that every point stands
// in memory at the end, where fresh pages cost more than anything else. Peers that are not installed are left
// out.
#include "Bench_Cases.h"
#include "Bench_Peer.h"
#include "Bench_Scan.h"

#include "ScanReader/QsbReader.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/mman.h>

namespace Bench {

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

namespace {

constexpr std::uint32_t s_uiPoints = 4000000;

/// Hands over every batch of the scan.
template<typename TakeT>
void ForEachBatch(const ScanFileC& scan, unsigned int uiBatch, const TakeT& take)
{
    QsbReader reader;
    if (reader.Open(scan.Path().c_str()) != 0) std::abort();
    QsbReadIterator batch(uiBatch);
    std::uint64_t ullCount = 0;
    while (reader.Read(batch, ullCount) == 0 && ullCount > 0)
        take(batch.GetPoints(), ullCount);
}

void KeepInOneBatch(const ScanFileC& scan)
{
    ForEachBatch(scan, scan.Points(),
                 [](const QsbPoint* pPoints, std::uint64_t ullCount) { Use(pPoints[ullCount / 2].x); });
}

/// Copies the batches to fresh memory.
void KeepCopies(const ScanFileC& scan, bool bHugePages)
{
    const std::size_t nBytes = scan.Points() * sizeof(QsbPoint);
    void* const pMemory = mmap(nullptr, nBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pMemory == MAP_FAILED) std::abort();
    madvise(pMemory, nBytes, bHugePages ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
    auto* pTarget = static_cast<char*>(pMemory);
    ForEachBatch(scan, 10000, [&](const QsbPoint* pPoints, std::uint64_t ullCount) {
        std::memcpy(pTarget, static_cast<const void*>(pPoints), ullCount * sizeof(QsbPoint));
        pTarget += ullCount * sizeof(QsbPoint);
    });
    Use(static_cast<const QsbPoint*>(pMemory)[scan.Points() / 2].x);
    munmap(pMemory, nBytes);
}

/// A file that goes when this goes: a head of text and the points with what each format has of them.
class TextHeadFileC
{
public:
    TextHeadFileC(const std::string& strPath, const std::string& strHead, bool bPly) : m_strPath(strPath)
    {
        std::FILE* const stream = std::fopen(strPath.c_str(), "wb");
        if (stream == nullptr) std::abort();
        std::fwrite(strHead.data(), 1, strHead.size(), stream);
        const std::vector<SIO::QsbPointC> points = MakePoints(100000);
        for (std::uint32_t i = 0; i < s_uiPoints; ++i) {
            const SIO::QsbPointC& point = points[i % points.size()];
            const float af[3] = {static_cast<float>(point.x), static_cast<float>(point.y),
                                 static_cast<float>(point.z)};
            std::fwrite(af, 1, sizeof af, stream);
            const unsigned char aucRgb[3] = {point.red, point.green, point.blue};
            const unsigned char aucBgr[4] = {point.blue, point.green, point.red, 0};
            bPly ? std::fwrite(aucRgb, 1, 3, stream) : std::fwrite(aucBgr, 1, 4, stream);
        }
        std::fclose(stream);
    }
    ~TextHeadFileC() { std::remove(m_strPath.c_str()); }
    TextHeadFileC(const TextHeadFileC&) = delete;
    TextHeadFileC& operator=(const TextHeadFileC&) = delete;

private:
    std::string m_strPath;
};

std::string PlyHead()
{
    return "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(s_uiPoints) +
           "\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\nproperty uchar "
           "green\n"
           "property uchar blue\nend_header\n";
}

std::string PcdHead()
{
    const std::string strPoints = std::to_string(s_uiPoints);
    return "VERSION 0.7\nFIELDS x y z rgb\nSIZE 4 4 4 4\nTYPE F F F U\nCOUNT 1 1 1 1\nWIDTH " + strPoints +
           "\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS " + strPoints + "\nDATA binary\n";
}

/// A Python that has what the script wants, or one that says what is missing.
std::unique_ptr<PeerC> StartScript(const std::string& strScript, const std::vector<std::string>& arguments)
{
    std::unique_ptr<PeerC> peer;
    for (const char* pszPython : {"python3", "/usr/bin/python3"}) {
        std::vector<std::string> command = {pszPython, strScript};
        command.insert(command.end(), arguments.begin(), arguments.end());
        peer = std::make_unique<PeerC>(command);
        if (peer->IsReady()) break;
    }
    return peer;
}

} // namespace

void RunPeers(const OptionsT& options)
{
    const std::string strBase = options.strDirectory + "/peers";
    const std::string strPrograms = options.strProgram.substr(0, options.strProgram.rfind('/') + 1);
    const ScanFileC scan(strBase + ".qsb", AllLayouts()[0], s_uiPoints);
    const TextHeadFileC ply(strBase + ".ply", PlyHead(), true);
    const TextHeadFileC pcd(strBase + ".pcd", PcdHead(), false);

    const auto numpy =
        StartScript(strPrograms + "peers/peer_numpy.py", {scan.Path(), std::to_string(scan.DataOffset())});
    const auto open3d = StartScript(strPrograms + "peers/peer_open3d.py", {strBase + ".ply"});
    const auto pcl = std::make_unique<PeerC>(
        std::vector<std::string>{strPrograms + "scanreader_bench_pcl", strBase + ".pcd"});

    std::vector<CandidateT> streaming = {
        {"ScanReader", [&] { ReadAll(scan, SIO::QsbInstructionSetT::eAvx2); }},
    };
    std::vector<CandidateT> keeping = {
        {"ScanReader, one batch", [&] { KeepInOneBatch(scan); }},
        {"ScanReader, copies", [&] { KeepCopies(scan, false); }},
        {"ScanReader, huge pages", [&] { KeepCopies(scan, true); }},
    };
    // A peer's own seconds count, not the way to it and back.
    std::vector<std::vector<double>> vecStreamed(1), vecKept(3);
    const auto join = [&](std::vector<CandidateT>& candidates, std::vector<std::vector<double>>& seconds,
                          PeerC& peer, const char* pszName, const char* pszHow) {
        const std::size_t n = candidates.size();
        seconds.emplace_back();
        candidates.push_back(
            {pszName, [&peer, &seconds, n, pszHow] { seconds[n].push_back(peer.Read(pszHow)); }});
    };
    std::printf("%s\n", AllLayouts()[0].pszName);
    for (PeerC* const peer : {numpy.get(), open3d.get(), pcl.get()})
        std::printf("  peer %s: %s\n", peer->IsReady() ? "takes part" : "is left out", peer->What().c_str());
    if (numpy->IsReady()) {
        join(streaming, vecStreamed, *numpy, "numpy fromfile", "stream");
        join(keeping, vecKept, *numpy, "numpy fromfile", "keep");
    }
    if (open3d->IsReady()) join(keeping, vecKept, *open3d, "Open3D, binary PLY", "keep");
    if (pcl->IsReady()) join(keeping, vecKept, *pcl, "PCL, binary PCD", "keep");

    const auto measure = [&](std::vector<CandidateT>& candidates, std::vector<std::vector<double>>& seconds) {
        RunInterleaved(candidates, options.nRounds);
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            if (seconds[i].empty()) continue;
            seconds[i].erase(seconds[i].begin()); // the round that warms up
            candidates[i].vecClockSeconds = candidates[i].vecThreadSeconds = seconds[i];
        }
        PrintRates(candidates, s_uiPoints / 1e6, "Mpt/s", {0});
    };
    std::printf("Streaming, batches of 10000\n");
    measure(streaming, vecStreamed);
    std::printf("Keeping all points (the time of peers stands in both columns)\n");
    measure(keeping, vecKept);
}

} // namespace Bench
