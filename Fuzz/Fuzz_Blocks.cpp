// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Takes the input as a program that writes a chain of blocks, shows the chain to the packed list piece by
// piece, and compares what the list tells with what was written. The input tells few blocks byte by byte and
// many by one of their kinds, so that chunks are filled.
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockList.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t s_nMostBytes = std::size_t{1} << 18;
constexpr std::size_t s_nHeadBytes = 12;

void Require(bool bTrue)
{
    if (!bTrue) std::abort();
}

class ChainC
{
public:
    ChainC(const std::uint8_t* pBytes, std::size_t nBytes)
    {
        while (nBytes >= 8 && m_vecBytes.size() < s_nMostBytes) {
            WriteBlocks(pBytes);
            pBytes += 8;
            nBytes -= 8;
        }
    }

    const std::vector<char>& Get() const { return m_vecBytes; }

private:
    /// Blocks by how many, their identifier, how it goes on, their data, how these go on, entries, and how
    /// their values go on.
    void WriteBlocks(const std::uint8_t* pBytes)
    {
        const std::size_t nBlocks = pBytes[0] < 200 ? pBytes[0] % 8 : 20 * (pBytes[0] - 199);
        for (std::size_t i = 0; i < nBlocks && m_vecBytes.size() < s_nMostBytes; ++i) {
            const std::size_t nEntries = pBytes[5] < 251 ? pBytes[5] % 5 : 50 * (pBytes[5] - 250);
            const std::size_t nData = pBytes[3] % 64 + (pBytes[4] == 0 ? 0 : i * pBytes[4] % (1 + pBytes[3]));
            Write(static_cast<std::uint32_t>(pBytes[1] + i * pBytes[2]));
            Write(static_cast<std::uint32_t>(16 * nEntries));
            Write(static_cast<std::uint32_t>(nData));
            for (std::size_t j = 0; j < nEntries; ++j) {
                Write(7);
                Write(static_cast<std::uint32_t>(j + (pBytes[7] == 0 ? 0 : i / pBytes[7])));
                Write(static_cast<std::uint32_t>(i * pBytes[6]));
                Write(0);
            }
            m_vecBytes.insert(m_vecBytes.end(), nData, 'd');
        }
    }

    void Write(std::uint32_t ui)
    {
        char ac[4];
        SIO::StoreLittleEndian(ac, ui);
        m_vecBytes.insert(m_vecBytes.end(), ac, ac + 4);
    }

    std::vector<char> m_vecBytes;
};

/// The block whose head is at `ullOffset` of the chain.
void RequireBlock(const SIO::QsbBlockC& block, const std::vector<char>& chain, std::uint64_t ullOffset)
{
    const char* const pHead = chain.data() + ullOffset;
    Require(block.GetOffset() == ullOffset);
    Require(block.GetId() == SIO::LoadLittleEndian<std::uint32_t>(pHead));
    Require(block.GetHeaderBytes() == SIO::LoadLittleEndian<std::uint32_t>(pHead + 4));
    Require(block.GetDataBytes() == SIO::LoadLittleEndian<std::uint32_t>(pHead + 8));
    if (block.GetHeaderBytes() != 0)
        Require(std::memcmp(block.begin(), pHead + s_nHeadBytes, block.GetHeaderBytes()) == 0);
}

void RequireChain(const SIO::QsbBlockListC& blocks, const std::vector<char>& chain,
                  std::vector<std::uint64_t>& vecOffsets)
{
    std::uint64_t ullOffset = 0;
    vecOffsets.clear();
    blocks.ForEach([&](const SIO::QsbBlockC& block, std::uint64_t ullIndex) {
        Require(ullIndex == vecOffsets.size());
        const std::uint64_t ullBlockBytes = s_nHeadBytes + block.GetHeaderBytes() + block.GetDataBytes();
        RequireBlock(block, chain, ullOffset);
        for (std::uint64_t i = 0; i < block.GetRunLength(); ++i, ullOffset += ullBlockBytes) {
            if (i != 0)
                Require(std::memcmp(&chain[ullOffset], &chain[ullOffset - s_nHeadBytes], s_nHeadBytes) == 0);
            vecOffsets.push_back(ullOffset);
        }
        return true;
    });
    Require(vecOffsets.size() == blocks.GetCount());
    Require(ullOffset == chain.size() && blocks.GetEndOffset() == chain.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes < 3) return -1;
    const ChainC written(pBytes + 2, nBytes - 2);
    const std::vector<char>& chain = written.Get();
    const std::size_t nWindow = s_nHeadBytes + 4096 + 32 * std::size_t{pBytes[0]} * pBytes[1];
    SIO::QsbBlockListC blocks;
    for (std::uint64_t ullOffset = 0; ullOffset < chain.size();) {
        const std::size_t nShown = std::min<std::size_t>(nWindow, chain.size() - ullOffset);
        const std::vector<char> shown(&chain[ullOffset],
                                      &chain[ullOffset] + nShown); // what is beyond is watched
        const std::uint64_t ullBefore = ullOffset;
        Require(blocks.AppendShown(shown.data(), shown.size(), ullOffset));
        Require(ullOffset > ullBefore);
    }
    std::vector<std::uint64_t> vecOffsets;
    RequireChain(blocks, chain, vecOffsets);
    const std::size_t nStep = 1 + std::max<std::size_t>(pBytes[0], vecOffsets.size() / 64);
    for (std::size_t i = pBytes[1]; i < vecOffsets.size(); i += nStep)
        RequireBlock(*blocks.Get(i), chain, vecOffsets[i]);
    RequireChain(blocks, chain, vecOffsets);
    return 0;
}
