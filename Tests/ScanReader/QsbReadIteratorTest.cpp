// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The exported iterator and point as objects: sizes, records, copies.
#include "ReaderTest.h"
#include "Support/Files.h"

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

namespace {

using namespace ReaderTest;

QsbPoint NumberedPoint()
{
    QsbPoint point;
    point.x = 1;
    point.y = 2;
    point.z = 3;
    point.red = 4;
    point.green = 5;
    point.blue = 6;
    point.intensity = 7;
    point.levelOfNoise = 8;
    point.gridIndex0 = 9;
    point.gridIndex1 = 10;
    return point;
}

void ExpectNumbered(const QsbPoint& point)
{
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2);
    EXPECT_EQ(point.z, 3);
    EXPECT_EQ(point.red, 4);
    EXPECT_EQ(point.green, 5);
    EXPECT_EQ(point.blue, 6);
    EXPECT_EQ(point.intensity, 7);
    EXPECT_EQ(point.levelOfNoise, 8);
    EXPECT_EQ(point.gridIndex0, 9u);
    EXPECT_EQ(point.gridIndex1, 10u);
}

class Iterator : public Fixture
{};

TEST_F(Iterator, HasItsSizeOfZeroedRecordsAndNullBehindThem)
{
    const QsbReadIterator iterator(3);
    ASSERT_NE(iterator.GetPoints(), nullptr);
    EXPECT_EQ(iterator.GetPoint(0), iterator.GetPoints());
    EXPECT_EQ(iterator.GetPoint(2), iterator.GetPoints() + 2);
    EXPECT_EQ(iterator.GetPoint(2)->x + iterator.GetPoint(2)->intensity + iterator.GetPoint(2)->gridIndex1,
              0);
    EXPECT_EQ(iterator.GetPoint(3), nullptr);
    EXPECT_EQ(iterator.GetPoint(0xFFFFFFFFFFFFFFFF), nullptr);
}

TEST_F(Iterator, TheDefaultSizeIs10000)
{
    const QsbReadIterator iterator;
    EXPECT_NE(iterator.GetPoint(9999), nullptr);
    EXPECT_EQ(iterator.GetPoint(10000), nullptr);
}

TEST_F(Iterator, OfSizeOneDeliversPointByPoint)
{
    ASSERT_EQ(Open(Support::SmallScan(2)), 0);
    QsbReadIterator iterator(1);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 1, ""}));
    EXPECT_EQ(Read(iterator), (ReadResult{0, 1, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->intensity, 101);
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Iterator, OfSizeZeroHasNoRecordAndReadsBatchesOfOne)
{
    ASSERT_EQ(Open(Support::SmallScan(2)), 0);
    QsbReadIterator iterator(0);
    EXPECT_EQ(iterator.GetPoint(0), nullptr);
    EXPECT_EQ(iterator.GetPoints(), nullptr);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 1, ""}));
    EXPECT_EQ(Read(iterator), (ReadResult{0, 1, ""}));
    EXPECT_EQ(Read(iterator), s_end);
    EXPECT_EQ(iterator.GetPoint(0), nullptr);
}

TEST_F(Iterator, OfSizeZeroIsReportedInTheErrorLog)
{
    const QsbReadIterator iterator(0);
    const std::string log = Support::ReadAll(Support::LogDirectory() + "/ErrorLog.txt");
    EXPECT_NE(log.find(R"(<<ASSERT at ..\..\Source\Sio\Sio_QsbReaderImpl()"), std::string::npos) << log;
    EXPECT_NE(log.find(R"(): !"Not allowed iterator size">>)"), std::string::npos) << log;
}

TEST_F(Iterator, LargerThanTheFileDeliversAllInOneBatch)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), 0);
    QsbReadIterator iterator(1000000);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 5, ""}));
    EXPECT_EQ(iterator.GetPoint(4)->intensity, 104);
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(Iterator, AnAssignedHandleSharesTheStateOfTheOther)
{
    QsbReadIterator first(1), second(2);
    unsigned char kept[sizeof first];
    std::memcpy(kept, static_cast<void*>(&first), sizeof first);
    first = second;
    EXPECT_EQ(first.GetPoints(), second.GetPoints());
    // Both would free the one state: put the other back.
    std::memcpy(static_cast<void*>(&first), kept, sizeof first);
    EXPECT_NE(first.GetPoints(), second.GetPoints());
}

TEST_F(Iterator, AnAssignedReaderSharesTheStateOfTheOther)
{
    QsbReader other;
    ASSERT_EQ(Open(Support::SmallScan(3)), 0);
    unsigned char kept[sizeof other];
    std::memcpy(kept, static_cast<void*>(&other), sizeof other);
    other = reader;
    EXPECT_EQ(other.GetNumPoints(), 3u);
    std::memcpy(static_cast<void*>(&other), kept, sizeof other);
    EXPECT_EQ(other.GetNumPoints(), 0u);
}

TEST_F(Iterator, TheHandlesAreOnePointerAndCannotBeCopyConstructed)
{
    EXPECT_EQ(sizeof(QsbReader), sizeof(void*));
    EXPECT_EQ(sizeof(QsbReadIterator), sizeof(void*));
    EXPECT_FALSE(std::is_copy_constructible_v<QsbReader>);
    EXPECT_FALSE(std::is_copy_constructible_v<QsbReadIterator>);
    EXPECT_FALSE(std::is_polymorphic_v<QsbReader>);
    EXPECT_FALSE(std::is_polymorphic_v<QsbReadIterator>);
}

TEST(Point, HasFortyBytesWithTheFieldsInOrder)
{
    EXPECT_EQ(sizeof(QsbPoint), 40u);
    EXPECT_EQ(offsetof(QsbPoint, z), 16u);
    EXPECT_EQ(offsetof(QsbPoint, red), 24u);
    EXPECT_EQ(offsetof(QsbPoint, blue), 26u);
    EXPECT_EQ(offsetof(QsbPoint, intensity), 28u);
    EXPECT_EQ(offsetof(QsbPoint, levelOfNoise), 30u);
    EXPECT_EQ(offsetof(QsbPoint, gridIndex0), 32u);
    EXPECT_EQ(offsetof(QsbPoint, gridIndex1), 36u);
}

TEST(Point, CopyAssignmentCopiesEveryField)
{
    const QsbPoint source = NumberedPoint();
    QsbPoint target;
    EXPECT_EQ(&(target = source), &target);
    ExpectNumbered(target);
}

TEST(Point, MoveAssignmentCopiesEveryFieldAndLeavesTheSource)
{
    QsbPoint source = NumberedPoint();
    QsbPoint target;
    EXPECT_EQ(&(target = std::move(source)), &target);
    ExpectNumbered(target);
    ExpectNumbered(source); // NOLINT(bugprone-use-after-move): that it stays is the promise
}

TEST(Point, CopyConstructionCopiesEveryField)
{
    const QsbPoint source = NumberedPoint();
    const QsbPoint copy(source);
    ExpectNumbered(copy);
}

TEST(Point, ANewPointIsZero)
{
    const QsbPoint point;
    EXPECT_EQ(point.x + point.y + point.z + point.red + point.green + point.blue, 0);
    EXPECT_EQ(point.intensity + point.levelOfNoise, 0);
    EXPECT_EQ(point.gridIndex0 + point.gridIndex1, 0u);
}

} // namespace
