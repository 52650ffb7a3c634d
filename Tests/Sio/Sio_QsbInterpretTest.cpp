// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the header of a point-cloud block means, and which block is chosen.
#include "ScanTest.h"

#include "RecordingModifier.h"
#include "Sio/Sio_QsbBlockHeader.h"

#include <bit>
#include <limits>

namespace {

using Support::Bytes;
using Support::BytesT;
using Support::QsbBytes;

constexpr double s_dMost = std::numeric_limits<double>::max();

class QsbInterpret : public SioTest::ScanTest
{
protected:
    /// Opens the file and interprets the block that is chosen automatically.
    bool Interprets(const QsbBytes& file)
    {
        scan.container.Close();
        scan.strategy.ResetData();
        EXPECT_TRUE(scan.Open(folder.Write("scan.qsb", file)));
        return scan.Interpret();
    }

    const SIO::QsbScanInfoC& Info() { return scan.strategy.GetInfo(); }
    std::uint64_t Points() { return scan.strategy.GetNumberOfPoints(); }
    std::uint32_t Kinds() { return scan.strategy.GetPointDefinition()->GetAvailablePointData(); }
    std::size_t RecordBytes() { return scan.strategy.GetPointDefinition()->GetSizeInBytes(); }
};

/// A point-cloud block of 10 points of 24 bytes whose header says how many count.
QsbBytes CountedScan(std::uint32_t id, std::uint32_t type, std::uint64_t count)
{
    QsbBytes file;
    file.Block(id).Entry(type, 1, count).Data(BytesT(240));
    return file;
}

TEST_F(QsbInterpret, ABlockWithoutAnyEntryHasDoublePositionsAndNeutralValues)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Data(BytesT(72))));
    EXPECT_EQ(RecordBytes(), 24u);
    EXPECT_EQ(Points(), 3u);
    EXPECT_EQ(Kinds(), 1u);
    EXPECT_EQ(Info().dInstrumentHeight, 0.0);
    EXPECT_EQ(Info().auiGridSize[0] + Info().auiGridSize[1], 0u);
    EXPECT_EQ(Info().oTransformation.At(0, 0), 1.0);
    EXPECT_EQ(Info().oTransformation.At(0, 3), 0.0);
}

TEST_F(QsbInterpret, TheBoundingBoxOfABlockWithoutTags2To7IsEmpty)
{
    ASSERT_TRUE(Interprets(Support::SmallScan(1)));
    double box[6] = {};
    ASSERT_TRUE(scan.strategy.GetBoundingBox(box[0], box[1], box[2], box[3], box[4], box[5]));
    EXPECT_EQ(std::vector<double>(box, box + 6),
              (std::vector<double>{s_dMost, s_dMost, s_dMost, -s_dMost, -s_dMost, -s_dMost}));
}

TEST_F(QsbInterpret, Tags2To7AreTheBoundingBox)
{
    ASSERT_TRUE(Interprets(Support::RichScan(1)));
    double box[6] = {};
    ASSERT_TRUE(scan.strategy.GetBoundingBox(box[0], box[1], box[2], box[3], box[4], box[5]));
    EXPECT_EQ(std::vector<double>(box, box + 6), (std::vector<double>{2, 3, 4, 5, 6, 7}));
}

TEST_F(QsbInterpret, Tags8To23AreTheMatrixRowByRow)
{
    const std::vector<double> elements{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Matrix(elements)));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(Info().oTransformation.At(i / 4, i % 4), i + 1.0);
}

TEST_F(QsbInterpret, Tags24To26AreTheGridAndTheInstrumentHeight)
{
    ASSERT_TRUE(
        Interprets(QsbBytes().Block(1).Entry(7, 24, 3).Entry(7, 25, 0xFFFFFFFF).DoubleEntry(26, -1.75)));
    EXPECT_EQ(Info().auiGridSize[0], 3u);
    EXPECT_EQ(Info().auiGridSize[1], 0xFFFFFFFFu);
    EXPECT_EQ(Info().dInstrumentHeight, -1.75);
}

TEST_F(QsbInterpret, TheValuesOfTags2To26AreTakenWhateverTheTypeCode)
{
    const auto bits = std::bit_cast<std::uint64_t>(1.75);
    ASSERT_TRUE(Interprets(
        QsbBytes().Block(1).Entry(1, 26, bits).Entry(77, 24, 0xFFFFFFFF00000005).Entry(0, 2, bits)));
    EXPECT_EQ(Info().dInstrumentHeight, 1.75);
    EXPECT_EQ(Info().auiGridSize[0], 5u);
    EXPECT_EQ(Info().oBoundingBox.adMin[0], 1.75);
}

TEST_F(QsbInterpret, ALaterEntryWithTheSameTagOverwrites)
{
    ASSERT_TRUE(Interprets(
        QsbBytes().Block(1).DoubleEntry(26, 1).DoubleEntry(26, 2).Entry(7, 24, 8).Entry(7, 24, 9)));
    EXPECT_EQ(Info().dInstrumentHeight, 2);
    EXPECT_EQ(Info().auiGridSize[0], 9u);
}

TEST_F(QsbInterpret, OtherTagsAreIgnored)
{
    QsbBytes file;
    file.Block(1);
    for (std::uint32_t tag = 27; tag <= 99; ++tag)
        file.Entry(9, tag, ~std::uint64_t{0});
    ASSERT_TRUE(Interprets(file.Entry(9, 0, 5).Entry(9, 1, 5).Data(BytesT(24))));
    EXPECT_EQ(Points(), 1u);
    EXPECT_EQ(Kinds(), 1u);
    EXPECT_EQ(reports.Reports().size(), 0u);
}

TEST_F(QsbInterpret, ATagAbove104RejectsTheBlockAndClosesTheContainer)
{
    EXPECT_FALSE(Interprets(QsbBytes().Block(1).Entry(7, 105)));
    EXPECT_FALSE(scan.container.IsOpen());
    EXPECT_FALSE(scan.strategy.HasData());
    EXPECT_FALSE(Interprets(QsbBytes().Block(1).Entry(40, 100).Entry(7, 0xFFFFFFFF)));
    EXPECT_TRUE(Interprets(QsbBytes().Block(1).Entry(7, 104)));
}

TEST_F(QsbInterpret, APositionTypeOtherThan40And41RejectsTheBlock)
{
    for (const std::uint32_t type : {0u, 7u, 39u, 42u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(Interprets(QsbBytes().Block(1).Entry(type, 100))) << type;
    }
    EXPECT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100)));
    EXPECT_EQ(RecordBytes(), 12u);
    EXPECT_TRUE(Interprets(QsbBytes().Block(1).Entry(41, 100)));
    EXPECT_EQ(RecordBytes(), 24u);
}

TEST_F(QsbInterpret, OfTwoPositionEntriesTheFirstCountsAndThereIsOnePosition)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100).Entry(41, 100).Entry(99, 100)));
    EXPECT_EQ(RecordBytes(), 12u);
    EXPECT_EQ(scan.strategy.GetPointDefinition()->GetCount(), 1u);
}

TEST_F(QsbInterpret, TheStoredSizeOfAnElementIsIgnored)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100, 9999).Entry(5, 101, 0).Data(BytesT(28))));
    EXPECT_EQ(RecordBytes(), 14u);
    EXPECT_EQ(Points(), 2u);
}

TEST_F(QsbInterpret, ColourBeforeIntensityStillMeansIntensityFirst)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(7, 104).Entry(5, 101).Entry(40, 100)));
    const SIO::PointDefinitionContainerI& definition = *scan.strategy.GetPointDefinition();
    ASSERT_EQ(definition.GetCount(), 3u);
    EXPECT_EQ(definition.GetElement(0)->GetAvailablePointData(), 1u);
    EXPECT_EQ(definition.GetElement(1)->GetAvailablePointData(), 2u);
    EXPECT_EQ(definition.GetElement(2)->GetAvailablePointData(), 16u);
}

TEST_F(QsbInterpret, TwoIntensityEntriesBothTakeBytes)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100).Entry(8, 101).Entry(4, 101)));
    EXPECT_EQ(RecordBytes(), 18u);
    EXPECT_EQ(scan.strategy.GetPointDefinition()->GetElement(1)->GetTypeCode(), 8u);
    EXPECT_EQ(scan.strategy.GetPointDefinition()->GetElement(2)->GetTypeCode(), 4u);
}

TEST_F(QsbInterpret, AnElementThatCannotBeMadeIsReportedAndLeftOut)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100).Entry(99, 101).Entry(7, 104).Data(BytesT(16))));
    EXPECT_EQ(Kinds(), 17u);
    EXPECT_EQ(Points(), 1u);
    const auto all = reports.Reports();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].text, "false");
    EXPECT_EQ(all[0].file, SioTest::s_szDefinition);
    EXPECT_EQ(all[1].text, "0 != pPointDef");
    EXPECT_EQ(all[1].file, SioTest::s_szQsb);
}

TEST_F(QsbInterpret, MillionsOfElementsThatCannotBeMadeGiveAFewReportsAndOneSummary)
{
    QsbBytes file;
    const std::uint32_t entries = 2000000;
    file.Block(1).ClaimHeaderBytes(16 * entries);
    BytesT bytes = file.Get();
    bytes.reserve(bytes.size() + 16 * entries);
    const BytesT entry = Bytes(std::uint32_t{99}, std::uint32_t{102}, std::uint64_t{0});
    for (std::uint32_t i = 0; i < entries; ++i)
        bytes.insert(bytes.end(), entry.begin(), entry.end());
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", bytes)));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_EQ(Kinds(), 1u);
    EXPECT_LE(reports.Reports().size(), 10u);
    EXPECT_EQ(reports.Reports().back().text, "!\"More point elements of this block are unknown\"");
    EXPECT_EQ(reports.Reports().back().file, SioTest::s_szQsb);
}

TEST_F(QsbInterpret, ThousandsOfElementsInAnyOrderAreTaken)
{
    QsbBytes file;
    const std::uint32_t entries = 60000;
    file.Block(1).ClaimHeaderBytes(16 * entries);
    BytesT bytes = file.Get();
    for (std::uint32_t i = 0; i < entries; ++i) {
        const BytesT entry =
            Bytes(i % 2 == 0 ? std::uint32_t{7} : std::uint32_t{5}, 104 - 3 * (i % 2), std::uint64_t{0});
        bytes.insert(bytes.end(), entry.begin(), entry.end());
    }
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", bytes)));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_EQ(RecordBytes(), 24u + entries / 2 * (4 + 2));
}

TEST_F(QsbInterpret, DataThatIsNoMultipleOfThePointLeavesAWholeNumberOfPoints)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(1).Entry(40, 100).Data(BytesT(35))));
    EXPECT_EQ(Points(), 2u);
}

TEST_F(QsbInterpret, ABlockWithIdentifier1IgnoresAPointCount)
{
    ASSERT_TRUE(Interprets(CountedScan(1, 7, 4)));
    EXPECT_EQ(Points(), 10u);
    ASSERT_TRUE(Interprets(CountedScan(1, 7, 11)));
    EXPECT_EQ(Points(), 10u);
}

TEST_F(QsbInterpret, ABlockWithIdentifier3WithoutAPointCountHasAllItsPoints)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(3).Data(BytesT(240))));
    EXPECT_EQ(Points(), 10u);
}

TEST_F(QsbInterpret, ABlockWithIdentifier3MayCountFewerPointsButNotMore)
{
    for (const std::uint32_t type : {1u, 6u, 7u, 9u}) {
        ASSERT_TRUE(Interprets(CountedScan(3, type, 4))) << type;
        EXPECT_EQ(Points(), 4u) << type;
        EXPECT_TRUE(Interprets(CountedScan(3, type, 10))) << type;
        EXPECT_FALSE(Interprets(CountedScan(3, type, 11))) << type;
        EXPECT_FALSE(scan.container.IsOpen());
    }
}

TEST_F(QsbInterpret, ThePointCountIsAsWideAsItsTypeCodeSays)
{
    const std::uint64_t count = 0x0000000100000205;
    ASSERT_TRUE(Interprets(CountedScan(3, 1, count)));
    EXPECT_EQ(Points(), 5u);
    EXPECT_FALSE(Interprets(CountedScan(3, 6, count)));
    EXPECT_FALSE(Interprets(CountedScan(3, 7, count)));
    ASSERT_TRUE(Interprets(CountedScan(3, 7, 0x0000000100000005)));
    EXPECT_EQ(Points(), 5u);
    EXPECT_FALSE(Interprets(CountedScan(3, 9, 0x0000000100000005)));
    EXPECT_FALSE(Interprets(CountedScan(3, 9, 0xFFFFFFFFFFFFFFFF)));
}

TEST_F(QsbInterpret, APointCountOfAnyOtherTypeCodeIsZero)
{
    for (const std::uint32_t type : {0u, 2u, 4u, 5u, 8u, 10u, 0xFFFFFFFFu}) {
        ASSERT_TRUE(Interprets(CountedScan(3, type, 4))) << type;
        EXPECT_EQ(Points(), 0u) << type;
    }
}

TEST_F(QsbInterpret, OfTwoPointCountsTheFirstCounts)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(3).Entry(7, 1, 2).Entry(7, 1, 9999).Data(BytesT(240))));
    EXPECT_EQ(Points(), 2u);
}

TEST_F(QsbInterpret, OfBlocksWithIdentifiers1And3The1Wins)
{
    QsbBytes file;
    file.Block(3).Data(BytesT(24)).Block(1).Data(BytesT(48)).Block(1).Data(BytesT(72));
    ASSERT_TRUE(Interprets(file));
    EXPECT_EQ(Points(), 2u);
}

TEST_F(QsbInterpret, WithoutABlockOfIdentifier1TheFirst3IsChosen)
{
    ASSERT_TRUE(Interprets(QsbBytes().Block(2).Block(3).Data(BytesT(24)).Block(3)));
    EXPECT_EQ(Points(), 1u);
}

TEST_F(QsbInterpret, WithoutAPointCloudBlockItFailsAndCloses)
{
    EXPECT_FALSE(Interprets(QsbBytes().Block(2).Block(4)));
    EXPECT_FALSE(scan.container.IsOpen());
}

TEST_F(QsbInterpret, ABlockCanBeNamedByItsIndexWhateverItsIdentifier)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", QsbBytes().Block(1).Block(77).Data(BytesT(48)))));
    ASSERT_TRUE(scan.Interpret(2));
    EXPECT_EQ(Points(), 2u);
}

TEST_F(QsbInterpret, AnIndexBeyondTheLastBlockFailsAndCloses)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(1))));
    EXPECT_FALSE(scan.Interpret(2));
    EXPECT_FALSE(scan.container.IsOpen());
}

TEST_F(QsbInterpret, AClosedContainerInterpretsNothing)
{
    EXPECT_FALSE(scan.Interpret());
    EXPECT_FALSE(scan.Interpret(0));
}

TEST_F(QsbInterpret, AStrategyOfAnotherClassFailsAndCloses)
{
    struct Other final : SIO::StrategyI
    {
        void SetPointDefinition(SIO::PointDefinitionContainerI*) override {}
        std::uint64_t GetNumberOfPoints() const override { return 0; }
        bool GetBoundingBox(double&, double&, double&, double&, double&, double&) const override
        {
            return false;
        }
        bool Seek(std::uint64_t) override { return false; }
    } other;
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(1))));
    EXPECT_FALSE(scan.container.CreateReadStrategyData(other, true, -1));
    EXPECT_FALSE(scan.container.IsOpen());
}

TEST_F(QsbInterpret, TheFlagChoosesBetweenMappedAndRawPositions)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::RichScan(1))));
    const BytesT zeros(64);
    for (const bool transform : {true, false}) {
        ASSERT_TRUE(scan.Interpret(-1, transform));
        SioTest::RecordingModifier modifier;
        scan.strategy.GetPointDefinition()->Decode(modifier, reinterpret_cast<const char*>(zeros.data()),
                                                   Info().oTransformation);
        EXPECT_EQ(modifier.point.x, transform ? 10.0 : 0.0);
    }
}

TEST_F(QsbInterpret, AfterAFailedInterpretationTheStrategyKeepsNoData)
{
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", Support::SmallScan(3))));
    ASSERT_TRUE(scan.Interpret());
    EXPECT_FALSE(scan.Interpret(99));
    EXPECT_FALSE(scan.strategy.HasData());
    EXPECT_EQ(scan.strategy.GetNumberOfPoints(), 0u);
    EXPECT_FALSE(scan.strategy.Seek(0));
}

TEST_F(QsbInterpret, ABlockOfMoreElementsThanAnyScanHasIsRefused)
{
    Support::QsbBytes file;
    file.Block(1);
    for (std::size_t i = 0; i < SIO::s_nMaxPointElements; ++i)
        file.Entry(5, 101, 2);
    ASSERT_TRUE(scan.Open(folder.Write("scan.qsb", file)));
    EXPECT_FALSE(scan.Interpret());
}

} // namespace
