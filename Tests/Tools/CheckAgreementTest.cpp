// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Check finds an error exactly when the exported reader refuses the file or does not deliver every point: for
// every way to spoil one byte, every length, and many ways to spoil several.
#include "Sio/Sio_QsbBlockHeader.h"
#include "Support/ScanFolder.h"
#include "Tools/CheckTest.h"

#include <ScanReader/QsbReader.h>
#include <boost/filesystem/operations.hpp>
#include <random>

namespace {

using namespace CheckTest;

constexpr unsigned int s_uiUsualBatch = 10000;

/// Points that a host gets in batches of this size; -1 when it is refused.
std::int64_t PointsDelivered(const std::string& path, unsigned int uiBatch = s_uiUsualBatch)
{
    Kry::ScanReader::QsbReader reader;
    if (reader.Open(path.c_str()) != 0) return -1;
    Kry::ScanReader::QsbReadIterator iterator(uiBatch);
    std::int64_t llPoints = 0;
    std::uint64_t count = 0;
    do {
        if (reader.Read(iterator, count) != 0) return -1;
        llPoints += static_cast<std::int64_t>(count);
    } while (count != 0);
    return llPoints;
}

class CheckAgreement : public testing::Test
{
protected:
    /// Asks both about these bytes. The file is a new one each time: some file systems write one that is
    /// emptied and filled again to the disk at once.
    void Compare(const BytesT& bytes, const std::string& what)
    {
        boost::filesystem::remove(m_oFolder.Path("scan.qsb"));
        CompareFile(m_oFolder.Write("scan.qsb", bytes), bytes, what);
    }

    /// As above for bytes that stand in the file at `path` already.
    void CompareFile(const std::string& path, const BytesT& bytes, const std::string& what)
    {
        const auto check = Check(bytes);
        // A batch that is larger than all points of the file behaves like one that is larger still, and is
        // cheaper.
        const std::int64_t llDelivered = PointsDelivered(path, bytes.size() < 1000 ? 1000 : s_uiUsualBatch);
        m_nDamaged += llDelivered < 0;
        ASSERT_EQ(check.oFindings.HasErrors(), llDelivered < 0) << what << ": " << Found(check);
        if (llDelivered < 0) return;
        ASSERT_EQ(check.GetReadable(), check.pHeader->GetPoints()) << what;
        ASSERT_GE(static_cast<std::uint64_t>(llDelivered), check.pHeader->GetPoints()) << what;
        ASSERT_EQ(check.pStatistics->ullPoints, check.pHeader->GetPoints()) << what;
    }

    /// Every byte of the file with each of these changes. The file is changed in its place: emptying and
    /// filling it anew makes some file systems write to the disk each time.
    void CompareEveryByte(BytesT bytes, const std::vector<std::uint8_t>& changes)
    {
        const std::string path = m_oFolder.Write("bytes.qsb", bytes);
        for (std::size_t i = 0; i < bytes.size() && !HasFatalFailure(); ++i) {
            const std::uint8_t uiWhole = bytes[i];
            for (const std::uint8_t change : changes) {
                bytes[i] = static_cast<std::uint8_t>(uiWhole ^ change);
                Support::WriteAt(path, i, {bytes[i]});
                CompareFile(path, bytes, "byte " + std::to_string(i) + " is " + std::to_string(bytes[i]));
            }
            bytes[i] = uiWhole;
            Support::WriteAt(path, i, {uiWhole});
        }
    }

    static std::vector<std::uint8_t> EveryChange()
    {
        std::vector<std::uint8_t> changes;
        for (int i = 1; i < 256; ++i)
            changes.push_back(static_cast<std::uint8_t>(i));
        return changes;
    }

    const Support::ScanFolder m_oFolder;
    int m_nDamaged = 0; ///< files that the reader refused
};

const std::vector<std::uint8_t> s_vecBitFlips = {1, 2, 4, 8, 16, 32, 64, 128, 255};

TEST_F(CheckAgreement, OnEverySingleByteOfASmallScan)
{
    CompareEveryByte(Support::SmallScan(2).Get(), EveryChange());
    EXPECT_GT(m_nDamaged, 1000);
}

TEST_F(CheckAgreement, OnEverySingleByteOfACountedScan)
{
    QsbBytes file;
    file.Block(3).Entry(6, 1, 2).Entry(40, 100, 12).Entry(5, 101, 2).Data(Support::SmallPoints(3));
    CompareEveryByte(file.Get(), EveryChange());
    EXPECT_GT(m_nDamaged, 1000);
}

TEST_F(CheckAgreement, OnEveryBitOfAScanWithEveryEntry)
{
    CompareEveryByte(CleanScan(2).Get(), s_vecBitFlips);
    EXPECT_GT(m_nDamaged, 100);
}

TEST_F(CheckAgreement, OnEveryBitOfAScanBetweenOtherBlocks)
{
    QsbBytes file;
    file.Block(3).Entry(40, 100, 12).Entry(8, 101, 4).Data(BytesT(16, 1));
    file.Block(7)
        .Data({1, 2, 3})
        .Block(1)
        .Entry(41, 100, 24)
        .Entry(4, 101, 2)
        .Data(BytesT(52, 2))
        .Block(0)
        .Block(0);
    CompareEveryByte(file.Get(), s_vecBitFlips);
    EXPECT_GT(m_nDamaged, 100);
}

TEST_F(CheckAgreement, OnEveryLength)
{
    QsbBytes counted;
    counted.Block(3)
        .Entry(1, 1, 2)
        .Entry(40, 100, 12)
        .Entry(5, 101, 2)
        .Data(Support::SmallPoints(5))
        .Data({9});
    for (const BytesT& bytes : {Support::SmallScan(3).Get(), CleanScan(3).Get(), counted.Get()}) {
        for (std::size_t n = 0; n <= bytes.size() && !HasFatalFailure(); ++n)
            Compare(Support::Truncated(bytes, n), "length " + std::to_string(n));
    }
    EXPECT_GT(m_nDamaged, 500);
}

TEST_F(CheckAgreement, OnScansSpoiledInSeveralPlaces)
{
    std::mt19937 random(20240611); // Its numbers are the same everywhere.
    const std::vector<BytesT> scans = {Support::SmallScan(3).Get(), CleanScan(2).Get(),
                                       CleanScan(2, 3).Get()};
    for (int i = 0; i < 10000 && !HasFatalFailure(); ++i) {
        BytesT bytes = scans[random() % scans.size()];
        for (auto n = 2 + random() % 3; n > 0; --n)
            bytes[random() % bytes.size()] =
                static_cast<std::uint8_t>(random() % 2 == 0 ? random() % 110 : random());
        if (random() % 4 == 0) bytes.resize(random() % bytes.size());
        Compare(bytes, "variant " + std::to_string(i));
    }
    EXPECT_GT(m_nDamaged, 1000);
}

TEST_F(CheckAgreement, OnCountedScansTornWhereTheReadersBatchesMatter)
{
    struct CaseT
    {
        std::uint32_t uiStated, uiRoom, uiHeld;
    };
    for (const CaseT& c : {CaseT{15000, 40000, 25000}, CaseT{15000, 40000, 20000}, CaseT{15000, 40000, 19999},
                           CaseT{15000, 18000, 17999}, CaseT{10000, 40000, 10000}, CaseT{10001, 40000, 19999},
                           CaseT{0, 5, 4}, CaseT{0, 20000, 10000}, CaseT{0, 20000, 9999}}) {
        QsbBytes file;
        file.Block(3).Entry(9, 1, c.uiStated).Entry(40, 100, 12).Entry(5, 101, 2);
        file.Data(Support::SmallPoints(c.uiHeld)).ClaimDataBytes(c.uiRoom * 14);
        Compare(file.Get(), std::to_string(c.uiStated) + " of " + std::to_string(c.uiRoom) +
                                " points, held " + std::to_string(c.uiHeld));
    }
    EXPECT_EQ(m_nDamaged, 5);
}

TEST_F(CheckAgreement, OnMoreEntriesThanAReaderKeeps)
{
    QsbBytes file;
    file.Block(5).ClaimHeaderBytes(0x20000000);
    const std::string path = m_oFolder.Write("entries.qsb", file);
    if (!Support::Resize(path, std::uint64_t{0x20000000} + 100)) GTEST_SKIP() << "no sparse files here";
    Tool::FileInputC input(path);
    EXPECT_EQ(Found(Tool::CheckScan(input, false, [](std::uint64_t) {})), "error QSB-006");
    EXPECT_EQ(PointsDelivered(path), -1);
}

TEST_F(CheckAgreement, OfTheNumberOfElementsInAPoint)
{
    const auto scan = [](std::size_t nElements, std::uint32_t uiFurtherType) {
        Support::QsbBytes file;
        file.Block(1);
        for (std::size_t i = 1; i < nElements; ++i)
            file.Entry(5, 101, 2); // the positions are an element too
        file.Entry(uiFurtherType, 102, 2);
        return file.Get();
    };
    constexpr std::uint32_t uiUnknownType = 77;
    constexpr std::size_t nMost = SIO::s_nMaxPointElements;
    ASSERT_TRUE(Find(Check(scan(nMost, 5)), "QSB-220"));
    ASSERT_FALSE(Find(Check(scan(nMost, uiUnknownType)), "QSB-220"));
    Compare(scan(nMost - 1, 5), "the most elements");
    Compare(scan(nMost, uiUnknownType), "the most elements and an unknown one");
    EXPECT_EQ(m_nDamaged, 0);
    Compare(scan(nMost, 5), "one element too many");
    EXPECT_EQ(m_nDamaged, 1);
}

} // namespace
