// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A long header lies in memory once, while it is read as well.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockList.h"
#include "Sio/Sio_QsbBlockWalk.h"
#include "Sio/Sio_StreamWindow.h"
#include "Support/AllocationCount.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_ChainCheck.h"
#include "Tools/Qsb/Tool_Finding.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::size_t s_nEntries = std::size_t{1} << 20;
constexpr std::size_t s_nHeaderBytes = s_nEntries * SIO::QsbFormat::s_nEntryBytes;
constexpr std::size_t s_nBesideIt = std::size_t{4} << 20; ///< windows and records

/// A file header whose own header is long.
std::vector<char> LongHeader()
{
    std::vector<char> bytes(12 + s_nHeaderBytes, 'e');
    SIO::StoreLittleEndian(bytes.data(), SIO::QsbFormat::s_uiFileHeaderId);
    SIO::StoreLittleEndian(bytes.data() + 4, static_cast<std::uint32_t>(s_nHeaderBytes));
    SIO::StoreLittleEndian(bytes.data() + 8, std::uint32_t{0});
    return bytes;
}

TEST(PeakMemory, WalkingTheChainHoldsALongHeaderOnce)
{
    const Support::TemporaryDirectory directory;
    const std::string strPath = directory.Narrow("long.qsb");
    const std::vector<char> bytes = LongHeader();
    Support::WriteAll(strPath, std::string(bytes.begin(), bytes.end()));
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        BSS::HAL::OpenStream(BSS::HAL::WidePath(strPath), "rb"), &std::fclose);
    ASSERT_NE(file, nullptr);
    SIO::QsbBlockListC blocks;
    const Support::AllocationCount allocations;
    SIO::StreamWindowC window;
    window.Attach(file.get());
    ASSERT_TRUE(WalkBlockChain(file.get(), window, blocks));
    EXPECT_LT(allocations.Bytes(), s_nHeaderBytes + s_nBesideIt);
    EXPECT_EQ(blocks.Get(0)->GetEntryCount(), s_nEntries);
    EXPECT_EQ(std::memcmp(blocks.Get(0)->begin(), bytes.data() + 12, s_nHeaderBytes), 0);
}

TEST(PeakMemory, CheckingTheChainHoldsALongHeaderOnce)
{
    const std::vector<char> bytes = LongHeader();
    Tool::MemoryInputC input(bytes.data(), bytes.size());
    Tool::FindingListC findings;
    const Support::AllocationCount allocations;
    const Tool::ChainC chain = Tool::WalkChain(input, findings, [](std::uint64_t) {});
    EXPECT_LT(allocations.Bytes(), s_nHeaderBytes + s_nBesideIt);
    EXPECT_TRUE(chain.bWhole);
    EXPECT_EQ(std::memcmp(chain.oBlocks.Get(0)->begin(), bytes.data() + 12, s_nHeaderBytes), 0);
}

/// An input that has become shorter since its size was asked for.
class ShrunkInputC final : public Tool::ScanInputI
{
public:
    explicit ShrunkInputC(const std::vector<char>& bytes) : m_oInput(bytes.data(), 12 + 100) {}
    std::uint64_t GetSize() const override { return 12 + s_nHeaderBytes; }
    std::size_t ReadAt(std::uint64_t ullOffset, void* pDestination, std::size_t nBytes) override
    {
        return m_oInput.ReadAt(ullOffset, pDestination, nBytes);
    }
    bool NextStoredOffset(std::uint64_t, std::uint64_t&) override { return false; }

private:
    Tool::MemoryInputC m_oInput;
};

TEST(PeakMemory, EntriesThatAFileLostMeanwhileAreZeros)
{
    const std::vector<char> bytes = LongHeader();
    ShrunkInputC input(bytes);
    Tool::FindingListC findings;
    const Tool::ChainC chain = Tool::WalkChain(input, findings, [](std::uint64_t) {});
    EXPECT_FALSE(chain.bLastHeaderWhole);
    const auto* const pEntries = reinterpret_cast<const char*>(chain.oBlocks.Get(0)->begin());
    EXPECT_EQ(std::string(pEntries + 96, 8), std::string("eeee") + std::string(4, '\0'));
    EXPECT_TRUE(std::all_of(pEntries + 100, pEntries + s_nHeaderBytes, [](char c) { return c == 0; }));
}

} // namespace
