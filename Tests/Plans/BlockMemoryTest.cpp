// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the list of many blocks with content takes in memory, and what becomes of a reader when there is no
// more of it.
#include "Bss/Bss_Hal/BSS_HAL_LargePages.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_QsbBlockList.h"
#include "Sio/Sio_QsbBlockWalk.h"
#include "Sio/Sio_StreamWindow.h"
#include "Support/AllocationCount.h"
#include "Support/LargePageFault.h"
#include "Support/QsbBytes.h"
#include "Support/ScanFolder.h"

#include <ScanReader/QsbReader.h>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#if defined(__SANITIZE_ADDRESS__)
#define BLOCK_MEMORY_IS_WATCHED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BLOCK_MEMORY_IS_WATCHED
#endif
#endif
#ifdef BLOCK_MEMORY_IS_WATCHED
#include <sanitizer/asan_interface.h>
#endif

namespace {

using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

constexpr std::uint32_t s_nBlocks = 200000;
constexpr std::uint32_t s_nPoints = 5;

/// Blocks of which none is like another, with so many entries each; points behind them.
Support::QsbBytes ManyBlocks(std::uint32_t nEntries)
{
    Support::QsbBytes file;
    for (std::uint32_t i = 0; i < s_nBlocks; ++i) {
        file.Block(100 + i);
        for (std::uint32_t j = 0; j < nEntries; ++j)
            file.Entry(i, 30 + j, j);
        file.Data(Support::BytesT(1 + i % 5));
    }
    file.Block(1).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(s_nPoints));
    return file;
}

/// The bytes that the list of the file's blocks takes, by counting what is allocated.
std::size_t ListBytes(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        BSS::HAL::OpenStream(BSS::HAL::WidePath(path), "rb"), &std::fclose);
    if (file == nullptr) return 0;
    SIO::StreamWindowC window;
    window.Attach(file.get());
    SIO::QsbBlockListC blocks;
    const Support::LargePageFault pages;
    const Support::AllocationCount allocations;
    EXPECT_TRUE(WalkBlockChain(file.get(), window, blocks));
    EXPECT_EQ(blocks.GetCount(), s_nBlocks + 2);
    return allocations.Bytes() + pages.Held() * BSS::HAL::s_nLargePageBytes;
}

class BlockMemory : public testing::TestWithParam<std::uint32_t>
{
protected:
    static std::uint32_t ReadPoints(QsbReader& reader)
    {
        QsbReadIterator iterator(2);
        std::uint32_t points = 0;
        std::uint64_t count = 0;
        while (reader.Read(iterator, count) == 0 && count > 0)
            points += static_cast<std::uint32_t>(count);
        return points;
    }

    Support::ScanFolder folder;
    std::string path = folder.Write("many.qsb", ManyBlocks(GetParam()));
};

TEST_P(BlockMemory, ABlockTakesFewBytesBesideItsEntriesAndOnlyOnePieceIsBegun)
{
    const std::size_t nEntryBytes = 16 * std::size_t{GetParam()};
    constexpr std::size_t nFirstOnes = std::size_t{1}
                                       << 16; // the small piece, the models, the list of chunks
    EXPECT_LE(ListBytes(path), s_nBlocks * (16 + nEntryBytes) + BSS::HAL::s_nLargePageBytes + nFirstOnes);
}

TEST_P(BlockMemory, AReaderThatIsRefusedAnyPieceSaysSoAndGivesAllOfThemBack)
{
    bool happened = true;
    std::size_t runs = 0;
    for (std::size_t n = 1; happened; ++n, ++runs) {
        SCOPED_TRACE(n);
        QsbReader reader;
        const Support::LargePageFault fault(n);
        const int opened = reader.Open(path.c_str());
        happened = fault.Happened();
        EXPECT_EQ(opened, happened ? -1 : 0);
        EXPECT_STREQ(reader.RetMsg(), happened ? "QsbReader:Open: Invalid QSB file." : "");
        if (happened) {
            EXPECT_EQ(fault.Held(), 0u);
        }
        reader.Close();
        EXPECT_EQ(fault.Held(), 0u);
        ASSERT_LT(n, 100u);
    }
    EXPECT_GT(runs, 2u); // each of several pieces was refused
}

TEST_P(BlockMemory, AReaderThatWasRefusedAPieceReadsTheFileOnceThereIsMemory)
{
    QsbReader reader;
    {
        const Support::LargePageFault fault(2);
        ASSERT_EQ(reader.Open(path.c_str()), -1);
    }
    ASSERT_EQ(reader.Open(path.c_str()), 0) << reader.RetMsg();
    EXPECT_EQ(ReadPoints(reader), s_nPoints);
}

INSTANTIATE_TEST_SUITE_P(WithSoManyEntriesEach, BlockMemory, testing::Values(2u, 3u, 5u));

#ifdef BLOCK_MEMORY_IS_WATCHED

TEST(WatchedMemory, ReachingBeyondAPieceOfTheListIsSeen)
{
    auto* const page = static_cast<char*>(BSS::HAL::TakeLargePage());
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(__asan_address_is_poisoned(page - 1));
    EXPECT_FALSE(__asan_address_is_poisoned(page + BSS::HAL::s_nLargePageBytes - 1));
    EXPECT_TRUE(__asan_address_is_poisoned(page + BSS::HAL::s_nLargePageBytes));
    BSS::HAL::GiveLargePageBack(page);
}

#endif

} // namespace
