// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The reader core: handles and the implementation objects behind them.
#include "Sio/Sio_QsbReader.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "ScanTest.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReaderImpl.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"

#include <boost/make_shared.hpp>
#include <memory>

namespace {

using Support::BytesT;
using Support::QsbBytes;

constexpr BSS::ResultCodeT s_ok = 0;
constexpr BSS::ResultCodeT s_refused = 0x0200001A;
constexpr BSS::ResultCodeT s_missing = 0x0200001B;
constexpr BSS::ResultCodeT s_noObject = 0x02000004;

class Reader : public testing::Test
{
protected:
    BSS::ResultCodeT Open(const QsbBytes& file, std::uint8_t flag = 1)
    {
        return reader.Open(folder.Write("scan.qsb", file), flag);
    }

    /// Reads a batch from the first record on. Returns the count, -2 when the result is not success.
    std::int32_t Read(SIO::QsbReaderIteratorC& iterator)
    {
        SIO::QsbPointArrayIteratorC target(points);
        std::int32_t count = -5;
        code = reader.Read(iterator, target, count);
        return code == s_ok ? count : -2;
    }

    static SIO::QsbReaderIteratorImplC& ImplOf(SIO::QsbReaderIteratorC& iterator)
    {
        return dynamic_cast<SIO::QsbReaderIteratorImplC&>(*iterator.GetImpl());
    }

    Support::ScanFolder folder;
    Support::ReportCapture reports;
    SIO::QsbReaderC reader;
    SIO::QsbPointC points[100];
    BSS::ResultCodeT code = 0;
};

TEST_F(Reader, TheConstructorsLinkTheImplementations)
{
    SIO::QsbReaderIteratorC iterator(7);
    EXPECT_NE(dynamic_cast<SIO::QsbReaderImplC*>(reader.GetImpl()), nullptr);
    EXPECT_EQ(reader.GetImpl()->GetOwner(), &reader);
    EXPECT_EQ(ImplOf(iterator).GetSize(), 7u);
    EXPECT_EQ(ImplOf(iterator).GetIteratorPos(), 0u);
    EXPECT_EQ(ImplOf(iterator).GetBuffer(), nullptr);
}

TEST_F(Reader, OpenSucceedsAndOpeningAgainIsRefusedWithTheFileLeftOpen)
{
    EXPECT_EQ(Open(Support::SmallScan(3)), s_ok);
    EXPECT_EQ(reader.Open(folder.Write("other.qsb", Support::SmallScan(9)), 1), s_refused);
    std::uint32_t count = 0;
    EXPECT_EQ(reader.GetNumPoints(count), s_ok);
    EXPECT_EQ(count, 3u);
}

TEST_F(Reader, OpenOfAMissingFileIsDoesNotExist)
{
    EXPECT_EQ(reader.Open(folder.Path("missing.qsb"), 1), s_missing);
    EXPECT_EQ(reader.Open(folder.Path("missing/scan.qsb"), 1), s_missing);
    EXPECT_EQ(reader.Open("", 1), s_missing);
}

TEST_F(Reader, OpenOfAFolderOrOfAnotherFileIsRefused)
{
    EXPECT_EQ(reader.Open(folder.Path(""), 1), s_refused);
    EXPECT_EQ(Open(QsbBytes::Nothing().Raw(BytesT(100))), s_refused);
    EXPECT_EQ(Open(QsbBytes(0)), s_refused);
}

TEST_F(Reader, OpenOfAFileWithoutAPointCloudBlockIsRefusedAndAGoodFileOpensNext)
{
    EXPECT_EQ(Open(QsbBytes()), s_refused);
    std::uint32_t flags = 7;
    EXPECT_EQ(reader.GetDataInfo(flags), s_refused);
    EXPECT_EQ(Open(Support::SmallScan(3)), s_ok);
}

TEST_F(Reader, IsQsbFileAsksTheContainer)
{
    EXPECT_TRUE(SIO::QsbReaderC::IsQsbFile(folder.Write("a.qsb", QsbBytes(0))));
    EXPECT_FALSE(SIO::QsbReaderC::IsQsbFile(folder.Write("b.qsb", BytesT(20))));
    EXPECT_FALSE(SIO::QsbReaderC::IsQsbFile(folder.Path("missing.qsb")));
}

TEST_F(Reader, EveryQueryOfAClosedReaderIsRefusedAndLeavesItsOutputs)
{
    std::uint32_t a = 5, b = 6;
    double height = 7;
    GMAT::Matrix4C matrix;
    matrix.At(0, 0) = 8;
    EXPECT_EQ(reader.GetDataInfo(a), s_refused);
    EXPECT_EQ(reader.GetNumPoints(a), s_refused);
    EXPECT_EQ(reader.GetInstrumentHeight(height), s_refused);
    EXPECT_EQ(reader.GetTransformation(matrix), s_refused);
    EXPECT_EQ(reader.GetGridSize(a, b), s_refused);
    EXPECT_EQ(reader.SeekPoint(0), s_refused);
    EXPECT_EQ(a + b, 11u);
    EXPECT_EQ(height + matrix.At(0, 0), 15);
}

TEST_F(Reader, ReadOfAClosedReaderIsRefusedAndLeavesTheCount)
{
    SIO::QsbReaderIteratorC iterator(10);
    SIO::QsbPointArrayIteratorC target(points);
    std::int32_t count = -5;
    EXPECT_EQ(reader.Read(iterator, target, count), s_refused);
    EXPECT_EQ(count, -5);
    EXPECT_EQ(reports.Reports().size(), 0u);
}

TEST_F(Reader, TheQueriesAnswerWhatTheHeaderSays)
{
    ASSERT_EQ(Open(Support::RichScan(4)), s_ok);
    std::uint32_t flags = 0, count = 0, first = 0, second = 0;
    double height = 0;
    GMAT::Matrix4C matrix;
    EXPECT_EQ(reader.GetDataInfo(flags), s_ok);
    EXPECT_EQ(reader.GetNumPoints(count), s_ok);
    EXPECT_EQ(reader.GetInstrumentHeight(height), s_ok);
    EXPECT_EQ(reader.GetGridSize(first, second), s_ok);
    EXPECT_EQ(reader.GetTransformation(matrix), s_ok);
    EXPECT_EQ(flags, 31u);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(height, 1.5);
    EXPECT_EQ(first, 3u);
    EXPECT_EQ(second, 5u);
    EXPECT_EQ(matrix.At(1, 3), 20.0);
}

TEST_F(Reader, SeekPointGoesWithinThePointsOnly)
{
    ASSERT_EQ(Open(Support::SmallScan(4)), s_ok);
    EXPECT_EQ(reader.SeekPoint(4), s_ok);
    EXPECT_EQ(reader.SeekPoint(5), s_refused);
}

TEST_F(Reader, AFlagOtherThanZeroMapsPositionsZeroDeliversThemAsStored)
{
    for (const std::uint8_t flag : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{255}}) {
        ASSERT_EQ(Open(Support::RichScan(2), flag), s_ok);
        SIO::QsbReaderIteratorC iterator(10);
        EXPECT_EQ(Read(iterator), 2);
        EXPECT_EQ(points[1].x, flag == 0 ? 1.0 : 11.0);
        reader.Close();
    }
}

TEST_F(Reader, CloseSucceedsAlwaysAndTheReaderOpensAgain)
{
    EXPECT_EQ(reader.Close(), s_ok);
    ASSERT_EQ(Open(Support::SmallScan(4)), s_ok);
    EXPECT_EQ(reader.Close(), s_ok);
    std::uint32_t flags = 0;
    EXPECT_EQ(reader.GetDataInfo(flags), s_refused);
    EXPECT_EQ(Open(Support::SmallScan(4)), s_ok);
}

TEST_F(Reader, AHandleWithoutItsImplementationReportsAndAnswersDoesNotExist)
{
    const std::unique_ptr<API::ImplObjectC> impl(reader.GetImpl());
    reader.SetImpl(nullptr);
    std::uint32_t a = 5;
    double height = 7;
    GMAT::Matrix4C matrix;
    EXPECT_EQ(reader.GetDataInfo(a), s_missing);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poImpl", SioTest::s_szReader));
    EXPECT_EQ(reader.Open("x", 1), s_missing);
    EXPECT_EQ(reader.GetNumPoints(a), s_missing);
    EXPECT_EQ(reader.GetInstrumentHeight(height), s_missing);
    EXPECT_EQ(reader.GetTransformation(matrix), s_missing);
    EXPECT_EQ(reader.GetGridSize(a, a), s_missing);
    EXPECT_EQ(reader.SeekPoint(0), s_missing);
    EXPECT_EQ(reports.Count("0 != poImpl"), 7u);
}

TEST_F(Reader, CloseWithoutAnImplementationAnswersWhatTheHandlerAnswers)
{
    const std::unique_ptr<API::ImplObjectC> impl(reader.GetImpl());
    reader.SetImpl(nullptr);
    EXPECT_EQ(reader.Close(), 1u); // the capturing handler answers true
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poImpl", SioTest::s_szReader));
}

TEST_F(Reader, AnImplementationOfAnotherClassIsAsNone)
{
    API::ImplObjectC* original = reader.GetImpl();
    reader.SetImpl(new SIO::QsbReaderIteratorImplC(1));
    delete original;
    std::uint32_t a = 5;
    EXPECT_EQ(reader.GetNumPoints(a), s_missing);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poImpl", SioTest::s_szReader));
}

TEST_F(Reader, ReadWithAnIteratorWithoutImplementationIsRequiredObjectMissing)
{
    SIO::QsbReaderIteratorC iterator(10);
    const std::unique_ptr<API::ImplObjectC> impl(iterator.GetImpl());
    iterator.SetImpl(nullptr);
    EXPECT_EQ(Read(iterator), -2);
    EXPECT_EQ(code, s_noObject);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poIteratorImpl", SioTest::s_szReader));
}

TEST_F(Reader, ReadWithAReaderWithoutImplementationIsDoesNotExist)
{
    SIO::QsbReaderIteratorC iterator(10);
    const std::unique_ptr<API::ImplObjectC> impl(reader.GetImpl());
    reader.SetImpl(nullptr);
    EXPECT_EQ(Read(iterator), -2);
    EXPECT_EQ(code, s_missing);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poImpl", SioTest::s_szReader));
}

TEST_F(Reader, AnIteratorWithoutImplementationReportsDoesNothingAndHasNoMorePoints)
{
    SIO::QsbReaderIteratorC iterator(10);
    const std::unique_ptr<API::ImplObjectC> impl(iterator.GetImpl());
    iterator.SetImpl(nullptr);
    EXPECT_FALSE(iterator.HasMorePoints());
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poImpl", SioTest::s_szReader));
    iterator.Reset();
    iterator.Next();
    iterator.Previous();
    EXPECT_EQ(reports.Count("0 != poImpl"), 4u);
}

TEST_F(Reader, AReadDeliversTheBatchAtTheIteratorsPositionAndDoesNotAdvanceIt)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_EQ(points[1].intensity, 101);
    EXPECT_EQ(points[1].y, 1.25);
    EXPECT_EQ(points[2].intensity, 0);
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_EQ(points[0].intensity, 100);
    EXPECT_EQ(ImplOf(iterator).GetIteratorPos(), 0u);
}

TEST_F(Reader, NextPreviousAndResetMoveByTheBatchSize)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    iterator.Next();
    iterator.Next();
    EXPECT_EQ(Read(iterator), 1);
    EXPECT_EQ(points[0].intensity, 104);
    iterator.Previous();
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_EQ(points[0].intensity, 102);
    iterator.Reset();
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_EQ(points[0].intensity, 100);
}

TEST_F(Reader, PreviousFromAPositionSmallerThanTheBatchLandsOnZero)
{
    SIO::QsbReaderIteratorImplC iterator(10);
    iterator.SetIteratorPos(7);
    iterator.Previous();
    EXPECT_EQ(iterator.GetIteratorPos(), 0u);
    iterator.Previous();
    EXPECT_EQ(iterator.GetIteratorPos(), 0u);
}

TEST_F(Reader, APositionThatIsNegativeAsASignedNumberBecomesZero)
{
    SIO::QsbReaderIteratorImplC iterator(10);
    iterator.SetIteratorPos(0x7FFFFFFFFFFFFFFF);
    EXPECT_EQ(iterator.GetIteratorPos(), 0x7FFFFFFFFFFFFFFFu);
    iterator.SetIteratorPos(0x8000000000000000);
    EXPECT_EQ(iterator.GetIteratorPos(), 0u);
}

TEST_F(Reader, APositionUpToTheNumberOfPointsIsSoughtBeyondItIsOnlyStored)
{
    ASSERT_EQ(Open(Support::SmallScan(5)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_TRUE(ImplOf(iterator).SetIteratorPos(5));
    EXPECT_FALSE(ImplOf(iterator).SetIteratorPos(6));
    EXPECT_EQ(ImplOf(iterator).GetIteratorPos(), 6u);
}

TEST_F(Reader, AnUnboundIteratorStoresItsPositionButSeeksNothing)
{
    SIO::QsbReaderIteratorImplC iterator(2);
    EXPECT_FALSE(iterator.SetIteratorPos(3));
    EXPECT_EQ(iterator.GetIteratorPos(), 3u);
}

TEST_F(Reader, AnIteratorHasMorePointsUntilItIsBoundAndThenWhilePointsRemain)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    EXPECT_TRUE(iterator.HasMorePoints());
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_TRUE(iterator.HasMorePoints());
    iterator.Next();
    EXPECT_TRUE(iterator.HasMorePoints());
    iterator.Next();
    EXPECT_FALSE(iterator.HasMorePoints());
}

TEST_F(Reader, WhenItsReaderIsDestroyedAnIteratorIsAsUnbound)
{
    SIO::QsbReaderIteratorC iterator(2);
    {
        SIO::QsbReaderC brief;
        ASSERT_EQ(brief.Open(folder.Write("brief.qsb", Support::SmallScan(1)), 1), s_ok);
        SIO::QsbPointArrayIteratorC target(points);
        std::int32_t count = 0;
        ASSERT_EQ(brief.Read(iterator, target, count), s_ok);
        iterator.Next();
        EXPECT_FALSE(iterator.HasMorePoints());
    }
    EXPECT_TRUE(iterator.HasMorePoints());
    EXPECT_FALSE(ImplOf(iterator).SetIteratorPos(0));
}

TEST_F(Reader, ASizeOfZeroIsReportedAndReadsBatchesOfOne)
{
    SIO::QsbReaderIteratorC iterator(0);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "!\"Not allowed iterator size\"", SioTest::s_szReaderImpl));
    ASSERT_EQ(Open(Support::SmallScan(3)), s_ok);
    EXPECT_EQ(Read(iterator), 1);
    iterator.Next();
    EXPECT_EQ(Read(iterator), 1);
    EXPECT_EQ(points[0].intensity, 101);
}

TEST_F(Reader, UsedWithASecondReaderAnIteratorKeepsItsPositionAndGetsANewBuffer)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    EXPECT_EQ(Read(iterator), 2);
    iterator.Next();
    const boost::shared_array<char> before = ImplOf(iterator).GetBuffer();
    SIO::QsbReaderC second;
    ASSERT_EQ(second.Open(folder.Write("rich.qsb", Support::RichScan(9)), 1), s_ok);
    SIO::QsbPointArrayIteratorC target(points);
    std::int32_t count = 0;
    ASSERT_EQ(second.Read(iterator, target, count), s_ok);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(points[0].intensity, 1002);
    EXPECT_NE(ImplOf(iterator).GetBuffer(), before);
}

TEST_F(Reader, BindingBeyondTheLastPointIsReportedAndGoesOn)
{
    ASSERT_EQ(Open(Support::SmallScan(3)), s_ok);
    SIO::QsbReaderIteratorC iterator(10);
    iterator.Next();
    EXPECT_GE(Read(iterator), 0);
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "SetIteratorPos(m_ullIteratorPos)", SioTest::s_szReaderImpl));
    EXPECT_EQ(ImplOf(iterator).GetIteratorPos(), 10u);
}

TEST_F(Reader, TheBufferIsKeptWhileTheBindingLasts)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    SIO::QsbReaderIteratorC iterator(2);
    EXPECT_EQ(Read(iterator), 2);
    const boost::shared_array<char> before = ImplOf(iterator).GetBuffer();
    iterator.Next();
    EXPECT_EQ(Read(iterator), 2);
    EXPECT_EQ(ImplOf(iterator).GetBuffer(), before);
}

TEST_F(Reader, TheBufferIsBoundedByWhatTheFileHoldsNotByWhatItClaims)
{
    ASSERT_EQ(Open(Support::SmallScan(5).ClaimDataBytes(0xFFFFFFFF)), s_ok);
    SIO::QsbReaderIteratorC iterator(0xFFFFFFFF);
    EXPECT_EQ(Read(iterator), -1);
    EXPECT_EQ(ImplOf(iterator).GetCapacity(), 5u);
}

TEST_F(Reader, ABatchThatTheFileDoesNotHoldWholeIsSuccessWithMinusOneAndTouchesNoPoint)
{
    ASSERT_EQ(Open(Support::SmallScan(5).ClaimDataBytes(6 * 14)), s_ok);
    SIO::QsbReaderIteratorC iterator(4);
    EXPECT_EQ(Read(iterator), 4);
    iterator.Next();
    points[0].intensity = 4711;
    EXPECT_EQ(Read(iterator), -1);
    EXPECT_EQ(Read(iterator), -1);
    EXPECT_EQ(points[0].intensity, 4711);
    EXPECT_EQ(ImplOf(iterator).GetIteratorPos(), 4u);
}

TEST_F(Reader, SeveralIteratorsOnOneReaderEachDeliverTheirOwnPoints)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    SIO::QsbReaderIteratorC fast(3), slow(2);
    EXPECT_EQ(Read(fast), 3);
    fast.Next();
    EXPECT_EQ(Read(slow), 2);
    EXPECT_EQ(points[0].intensity, 100);
    EXPECT_EQ(Read(fast), 3);
    EXPECT_EQ(points[0].intensity, 103);
    slow.Next();
    EXPECT_EQ(Read(slow), 2);
    EXPECT_EQ(points[0].intensity, 102);
}

TEST_F(Reader, ReopenedWithAnotherRecordSizeTheBufferOfABoundIteratorFollows)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    SIO::QsbReaderIteratorC iterator(4);
    EXPECT_EQ(Read(iterator), 4);
    reader.Close();
    ASSERT_EQ(Open(Support::RichScan(9)), s_ok);
    iterator.Next();
    EXPECT_EQ(Read(iterator), 4);
    EXPECT_EQ(points[3].intensity, 1007);
    EXPECT_EQ(points[3].blue, 9);
}

TEST_F(Reader, AfterCloseAndReopenAnIteratorGoesOnAtItsOwnPosition)
{
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    SIO::QsbReaderIteratorC iterator(4);
    EXPECT_EQ(Read(iterator), 4);
    iterator.Next();
    reader.Close();
    ASSERT_EQ(Open(Support::SmallScan(9)), s_ok);
    EXPECT_EQ(Read(iterator), 4);
    EXPECT_EQ(points[0].intensity, 104);
}

TEST(ReaderIterator, BindsToNoStrategyAndToNoneWithoutABlock)
{
    const Support::ReportCapture reports;
    SIO::QsbReaderIteratorImplC iterator(2);
    EXPECT_FALSE(iterator.BindStrategy(nullptr));
    EXPECT_EQ(reports.Reports().size(), 0u);
    EXPECT_FALSE(iterator.BindStrategy(boost::make_shared<SIO::QsbStrategyC>()));
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "0 != poPointDefinition", SioTest::s_szReaderImpl));
}

TEST(ReaderIterator, BindsToNoDefinitionWithoutElements)
{
    const Support::ReportCapture reports;
    SIO::QsbReaderIteratorImplC iterator(2);
    SIO::PointDefinitionC definition;
    const auto strategy = boost::make_shared<SIO::QsbStrategyC>();
    strategy->SetPointDefinition(&definition);
    EXPECT_FALSE(iterator.BindStrategy(strategy));
    EXPECT_TRUE(SioTest::ReportedOnce(reports, "tSizeInBytes > 0", SioTest::s_szReaderImpl));
}

} // namespace
