// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C functions: what they refuse, what they promise of their records, and batches of any size.
#include "ReaderTest.h"

#include <ScanReader/qsb.h>
#include <cstring>

namespace {

using namespace ReaderTest;

class Functions : public testing::Test
{
protected:
    ~Functions() override { qsb_close(reader); }

    void Open(const Support::QsbBytes& file)
    {
        reader = qsb_open(folder.Write("scan.qsb", file).c_str(), message, sizeof message);
        ASSERT_NE(reader, nullptr) << message;
    }

    /// Reads one batch. -1 when that fails.
    int Read(std::size_t capacity)
    {
        points.resize(std::max(points.size(), capacity));
        std::size_t count = 99;
        const int result = qsb_read(reader, points.data(), sizeof points[0], capacity, &count);
        if (result != QSB_OK) {
            EXPECT_EQ(count, 0u);
        }
        return result == QSB_OK ? static_cast<int>(count) : -1;
    }

    std::string Last() const { return qsb_last_message(reader); }

    const Support::ScanFolder folder;
    qsb_reader* reader = nullptr;
    char message[QSB_MESSAGE_SIZE] = "before";
    std::vector<qsb_point> points;
};

TEST_F(Functions, TheVersionIsThatOfTheHeader)
{
    EXPECT_EQ(qsb_version(), static_cast<std::uint32_t>(QSB_VERSION));
}

TEST_F(Functions, AnOpenedFileLeavesNoMessage)
{
    Open(Support::SmallScan(1));
    EXPECT_STREQ(message, "");
    EXPECT_EQ(Last(), "");
}

TEST_F(Functions, AFileThatCannotBeOpenedIsNullWithTheReason)
{
    EXPECT_EQ(qsb_open(folder.Path("missing").c_str(), message, sizeof message), nullptr);
    EXPECT_EQ(message, std::string(s_szNoQsbFile));
    EXPECT_EQ(qsb_open(nullptr, message, sizeof message), nullptr);
    EXPECT_EQ(message, std::string(s_szNoQsbFile));
    EXPECT_EQ(qsb_open(folder.Path("missing").c_str(), nullptr, 0), nullptr);
}

TEST_F(Functions, AMessageIsCutToItsRoom)
{
    EXPECT_EQ(qsb_open(nullptr, message, 10), nullptr);
    EXPECT_STREQ(message, "QsbReader");
    EXPECT_EQ(qsb_open(nullptr, message, 1), nullptr);
    EXPECT_STREQ(message, "");
    message[0] = 'x';
    EXPECT_EQ(qsb_open(nullptr, message, 0), nullptr);
    EXPECT_EQ(message[0], 'x');
}

TEST_F(Functions, NullIsRefusedOrDoesNothing)
{
    qsb_facts facts;
    qsb_point point;
    std::size_t count = 99;
    qsb_close(nullptr);
    EXPECT_STREQ(qsb_last_message(nullptr), "");
    EXPECT_EQ(qsb_get_facts(nullptr, &facts, sizeof facts), QSB_BAD_ARGUMENT);
    EXPECT_EQ(qsb_read(nullptr, &point, sizeof point, 1, &count), QSB_BAD_ARGUMENT);
    Open(Support::SmallScan(2));
    EXPECT_EQ(qsb_get_facts(reader, nullptr, sizeof facts), QSB_BAD_ARGUMENT);
    EXPECT_EQ(qsb_read(reader, nullptr, sizeof point, 1, &count), QSB_BAD_ARGUMENT);
    EXPECT_EQ(qsb_read(reader, &point, sizeof point, 1, nullptr), QSB_BAD_ARGUMENT);
    EXPECT_EQ(count, 99u);
    EXPECT_EQ(Read(5), 2); // and nothing was lost
}

TEST_F(Functions, RecordsOfAnotherSizeAndNoRoomAreRefused)
{
    Open(Support::SmallScan(2));
    qsb_point point;
    std::size_t count = 99;
    EXPECT_EQ(qsb_read(reader, &point, sizeof point - 1, 1, &count), QSB_BAD_ARGUMENT);
    EXPECT_EQ(qsb_read(reader, &point, sizeof point + 8, 1, &count), QSB_BAD_ARGUMENT);
    EXPECT_EQ(qsb_read(reader, &point, sizeof point, 0, &count), QSB_BAD_ARGUMENT);
    EXPECT_EQ(count, 99u);
    EXPECT_EQ(Read(5), 2);
}

TEST_F(Functions, TheFactsAreThoseOfTheFile)
{
    Open(Support::RichScan(7));
    qsb_facts facts;
    ASSERT_EQ(qsb_get_facts(reader, &facts, sizeof facts), QSB_OK);
    EXPECT_EQ(facts.points, 7u);
    EXPECT_EQ(facts.rows, 4u);
    EXPECT_EQ(facts.columns, 6u);
    EXPECT_EQ(facts.instrument_height, 1.5);
    EXPECT_EQ(facts.transformation[0], 1.0);
    EXPECT_EQ(facts.transformation[7], 20.0);
    EXPECT_EQ(facts.content, QSB_HAS_NOISE | QSB_HAS_GRID | QSB_HAS_COLOR);
    EXPECT_EQ(facts.reserved, 0u);
}

TEST_F(Functions, ASmallFileHasNoGridAndNoExtras)
{
    Open(Support::SmallScan(7));
    qsb_facts facts;
    ASSERT_EQ(qsb_get_facts(reader, &facts, sizeof facts), QSB_OK);
    EXPECT_EQ(facts.rows, 0u);
    EXPECT_EQ(facts.columns, 0u);
    EXPECT_EQ(facts.content, 0u);
}

TEST_F(Functions, FactsOfALaterVersionAreFilledUpWithZeros)
{
    struct
    {
        qsb_facts known;
        std::uint64_t later[3];
    } facts;
    std::memset(&facts, 0xAA, sizeof facts);
    Open(Support::SmallScan(7));
    ASSERT_EQ(qsb_get_facts(reader, &facts.known, sizeof facts), QSB_OK);
    EXPECT_EQ(facts.known.points, 7u);
    EXPECT_EQ(facts.later[0] | facts.later[1] | facts.later[2], 0u);
    facts.known.points = 5;
    EXPECT_EQ(qsb_get_facts(reader, &facts.known, sizeof facts.known - 1), QSB_BAD_ARGUMENT);
    EXPECT_EQ(facts.known.points, 5u);
}

TEST_F(Functions, EveryElementReachesItsField)
{
    Open(Support::RichScan(3));
    points.resize(3);
    std::memset(static_cast<void*>(points.data()), 0xAA, 3 * sizeof points[0]);
    ASSERT_EQ(Read(3), 3);
    const qsb_point& point = points[2];
    EXPECT_EQ(point.x, 12.0);
    EXPECT_EQ(point.y, 24.0);
    EXPECT_EQ(point.z, 36.0);
    EXPECT_EQ(point.red, 2);
    EXPECT_EQ(point.green, 3);
    EXPECT_EQ(point.blue, 4);
    EXPECT_EQ(point.reserved, 0);
    EXPECT_EQ(point.intensity, 1002);
    EXPECT_EQ(point.noise, 2);
    EXPECT_EQ(point.row, 2u);
    EXPECT_EQ(point.column, 3u);
}

TEST_F(Functions, BatchesOfAnySizeDeliverEveryPointOnceAndInOrder)
{
    for (const std::size_t capacity : {1u, 7u, 9999u, 10000u, 10001u, 25003u, 40000u}) {
        Open(Support::SmallScan(25003));
        std::size_t delivered = 0;
        bool ordered = true;
        for (int count = Read(capacity); count > 0; count = Read(capacity)) {
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i, ++delivered)
                ordered = ordered && points[i].x == static_cast<float>(delivered);
            if (delivered < 25003) {
                EXPECT_EQ(static_cast<std::size_t>(count), capacity);
            }
        }
        EXPECT_TRUE(ordered) << capacity;
        EXPECT_EQ(delivered, 25003u) << capacity;
        EXPECT_EQ(Last(), s_szEnd);
        EXPECT_EQ(Read(capacity), 0);
        qsb_close(reader);
        reader = nullptr;
    }
}

TEST_F(Functions, RecordsBeyondTheCountStayAsTheyWere)
{
    Open(Support::SmallScan(3));
    points.resize(5);
    points[3].intensity = 7777;
    EXPECT_EQ(Read(5), 3);
    EXPECT_EQ(points[3].intensity, 7777);
}

TEST_F(Functions, ATornEndDeliversTheWholeBatchesAndThenFailsEveryTime)
{
    const auto whole = Support::SmallScan(25003).Get();
    reader = qsb_open(folder.Write("torn.qsb", Support::Truncated(whole, whole.size() - 1)).c_str(), nullptr, 0);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(Read(40000), 20000);
    EXPECT_EQ(Last(), "");
    EXPECT_EQ(Read(40000), -1);
    EXPECT_EQ(Last(), "QsbReader:Read: Failed to read points.");
    EXPECT_EQ(Read(1), -1);
}

TEST_F(Functions, TheRecordsHaveTheDocumentedSizes)
{
    EXPECT_EQ(sizeof(qsb_point), 40u);
    EXPECT_EQ(sizeof(qsb_facts), 168u);
}

} // namespace
