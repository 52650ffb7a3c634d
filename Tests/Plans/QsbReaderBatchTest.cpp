// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Batches through the exported interface and through the container, with each instruction set: the same
// points in batches of any size, from several iterators at once, and after writing.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Plans/PlanCases.h"
#include "ScanReader/QsbReader.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <cstring>
#include <iterator>
#include <string>

namespace {

using namespace PlanTest;
using namespace SIO;
namespace F = QsbFormat;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

constexpr std::size_t s_nPoints = 20011; // two batches of the usual size and a rest

const LayoutT s_aLayouts[] = {{{{PD_POSITION, F::s_uiTypeFloatTriple},
                                {PD_INTENSITY, F::s_uiTypeUInt16},
                                {PD_COLOR, F::s_uiTypeColor}}},
                              {{{PD_POSITION, F::s_uiTypeDoubleTriple},
                                {PD_INTENSITY, F::s_uiTypeUInt16},
                                {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt16},
                                {PD_GRID, F::s_uiTypeUInt32Pair},
                                {PD_COLOR, F::s_uiTypeColor}}},
                              {{{PD_POSITION, F::s_uiTypeFloatTriple}, {PD_INTENSITY, F::s_uiTypeUInt16}}},
                              {{{PD_POSITION, F::s_uiTypeFloatTriple},
                                {PD_INTENSITY, F::s_uiTypeFloat},
                                {PD_LEVEL_OF_NOISE, F::s_uiTypeFloat}}},
                              {{{PD_POSITION, F::s_uiTypeDoubleTriple},
                                {PD_INTENSITY, F::s_uiTypeInt16},
                                {PD_INTENSITY, F::s_uiTypeUInt16}}}};

template<typename T>
void Append(std::string& strBytes, T value)
{
    char ac[sizeof(T)];
    StoreLittleEndian(ac, value);
    strBytes.append(ac, sizeof ac);
}

void AppendEntry(std::string& strBytes, std::uint32_t uiType, std::uint32_t uiTag, double dValue)
{
    Append(strBytes, uiType);
    Append(strBytes, uiTag);
    Append(strBytes, dValue);
}

std::uint32_t TagOf(std::uint32_t uiKind)
{
    std::uint32_t uiTag = F::s_uiTagPosition;
    for (; uiKind > 1; uiKind /= 2)
        ++uiTag;
    return uiTag;
}

/// A file whose only point cloud has these stored points; nothing of ours has written it.
std::string FileOf(const LayoutT& layout, const GMAT::Matrix4C& matrix, const std::vector<char>& stored)
{
    std::string strEntries;
    for (std::uint32_t i = 0; i < 16; ++i)
        AppendEntry(strEntries, F::s_uiType64Bit, F::s_uiTagMatrix + i,
                    matrix.At(static_cast<int>(i) / 4, i % 4));
    for (const ElementT& element : layout.elements)
        AppendEntry(strEntries, element.uiTypeCode, TagOf(element.uiKind), 0.0);

    std::string strFile;
    for (const std::uint32_t ui : {F::s_uiFileHeaderId, 16u, 0u, F::s_uiTypeUInt32, 1u, F::s_uiVersion2, 0u})
        Append(strFile, ui);
    Append(strFile, F::s_uiPointCloudId);
    Append(strFile, static_cast<std::uint32_t>(strEntries.size()));
    Append(strFile, static_cast<std::uint32_t>(stored.size()));
    return strFile + strEntries + std::string(stored.begin(), stored.end());
}

const QsbPointC* RecordsOf(const QsbReadIterator& iterator)
{
    return reinterpret_cast<const QsbPointC*>(iterator.GetPoints());
}

class QsbReaderBatch : public testing::Test
{
protected:
    /// A file of this layout, and what its points are.
    void Make(const LayoutT& layout)
    {
        PointDefinitionC definition;
        layout.Define(definition);
        std::mt19937 random(21);
        const GMAT::Matrix4C matrix = Matrices()[1];
        const std::vector<char> stored = RandomStoredPoints(definition, s_nPoints, random);
        Support::WriteAll(Path(), FileOf(layout, matrix, stored));
        m_vecExpected.assign(s_nPoints, QsbPointC());
        DecodeVirtually(definition, stored.data(), s_nPoints, matrix, m_vecExpected.data());
    }

    std::string Path() const { return m_oDirectory.Narrow("scan.qsb"); }

    void ExpectAllPointsInBatchesOf(unsigned int uiSize)
    {
        QsbReader reader;
        ASSERT_EQ(reader.Open(Path().c_str()), 0) << reader.RetMsg();
        QsbReadIterator batch(uiSize);
        std::size_t nDone = 0;
        std::uint64_t ullCount = 0;
        while (reader.Read(batch, ullCount) == 0 && ullCount > 0) {
            ASSERT_EQ(ullCount, std::min<std::size_t>(uiSize, s_nPoints - nDone));
            ASSERT_TRUE(SameRecords(m_vecExpected.data() + nDone, RecordsOf(batch), ullCount)) << nDone;
            nDone += ullCount;
        }
        EXPECT_EQ(nDone, s_nPoints);
    }

    Support::TemporaryDirectory m_oDirectory;
    std::vector<QsbPointC> m_vecExpected;
};

TEST_F(QsbReaderBatch, DeliversTheSamePointsInBatchesOfAnySizeAsTheEnvironmentChooses)
{
    for (const LayoutT& layout : s_aLayouts) {
        Make(layout);
        for (const unsigned int uiSize : {1u, 3u, 99u, 10000u, 30000u}) {
            SCOPED_TRACE(layout.Name() + " in batches of " + std::to_string(uiSize));
            ExpectAllPointsInBatchesOf(uiSize);
        }
    }
}

TEST_F(QsbReaderBatch, DeliversTheSamePointsWithEachInstructionSet)
{
    std::vector<QsbInstructionSetT> sets = PlanSets();
    sets.push_back(QsbInstructionSetT::eVirtual);
    for (const LayoutT& layout : s_aLayouts) {
        Make(layout);
        for (const QsbInstructionSetT eSet : sets) {
            const ScopedInstructionSetC scoped(eSet);
            for (const unsigned int uiSize : {1u, 3u, 99u, 10000u}) {
                SCOPED_TRACE(layout.Name() + " in batches of " + std::to_string(uiSize) + ", set " +
                             std::to_string(static_cast<int>(eSet)));
                ExpectAllPointsInBatchesOf(uiSize);
            }
        }
    }
}

TEST_F(QsbReaderBatch, AnOpenedScanHasPlansForItsLayout)
{
    for (const LayoutT& layout : s_aLayouts) {
        Make(layout);
        QsbC container;
        QsbStrategyC strategy;
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), true, false));
        ASSERT_TRUE(container.CreateReadStrategyData(strategy, true, -1));
        EXPECT_TRUE(strategy.GetData()->m_oDecodePlan.IsUsable()) << layout.Name();
        EXPECT_TRUE(strategy.GetData()->m_oEncodePlan.IsUsable()) << layout.Name();
    }
}

TEST_F(QsbReaderBatch, DeliversMoreElementsThanAPlanTakes)
{
    LayoutT layout{{{PD_POSITION, F::s_uiTypeFloatTriple}}};
    while (layout.elements.size() < 40)
        layout.elements.push_back({PD_INTENSITY, F::s_uiTypeUInt16});
    Make(layout);
    ExpectAllPointsInBatchesOf(9999);
}

TEST_F(QsbReaderBatch, TwoIteratorsInTurnEachDeliverTheirOwnPoints)
{
    Make(s_aLayouts[0]);
    QsbReader reader;
    ASSERT_EQ(reader.Open(Path().c_str()), 0) << reader.RetMsg();
    QsbReadIterator small(7), large(9000);
    std::size_t nSmall = 0;
    std::size_t nLarge = 0;
    std::uint64_t ullCount = 0;
    while (nLarge < s_nPoints) {
        for (int i = 0; i < 50; ++i, nSmall += ullCount) {
            ASSERT_EQ(reader.Read(small, ullCount), 0);
            ASSERT_TRUE(SameRecords(m_vecExpected.data() + nSmall, RecordsOf(small), ullCount)) << nSmall;
        }
        ASSERT_EQ(reader.Read(large, ullCount), 0);
        ASSERT_TRUE(SameRecords(m_vecExpected.data() + nLarge, RecordsOf(large), ullCount)) << nLarge;
        nLarge += ullCount;
    }
    EXPECT_EQ(nSmall, 3u * 50 * 7);
}

/// A container that writes and reads the same file.
class QsbWriteBatch : public QsbReaderBatch
{
protected:
    void SetUp() override
    {
        std::mt19937 random(31);
        m_vecRecords = RandomRecords(5000, random);
        LayoutT layout = s_aLayouts[1];
        layout.bRaw = true;
        layout.Define(m_oDefinition);
        m_vecExpectedBytes = EncodeVirtually(m_oDefinition, m_vecRecords.data(), m_vecRecords.size());
    }

    void WriteFile()
    {
        QsbC container;
        QsbStrategyC strategy;
        strategy.SetPointDefinition(&m_oDefinition);
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), false, true));
        ASSERT_TRUE(container.WritePoints(m_vecRecords.data(), 1234, strategy));
        ASSERT_TRUE(container.WritePoints(m_vecRecords.data() + 1234, 3766, strategy));
        ASSERT_TRUE(container.Close());
    }

    std::string DataOf(std::size_t nBytes) const
    {
        const std::string strFile = Support::ReadAll(Path());
        return strFile.substr(strFile.size() - std::min(strFile.size(), nBytes));
    }

    PointDefinitionC m_oDefinition;
    std::vector<QsbPointC> m_vecRecords;
    std::vector<char> m_vecExpectedBytes;
};

TEST_F(QsbWriteBatch, StoresTheSameBytesWithEachInstructionSet)
{
    std::vector<QsbInstructionSetT> sets = PlanSets();
    sets.push_back(QsbInstructionSetT::eVirtual);
    for (const QsbInstructionSetT eSet : sets) {
        const ScopedInstructionSetC scoped(eSet);
        WriteFile();
        EXPECT_EQ(DataOf(m_vecExpectedBytes.size()),
                  std::string(m_vecExpectedBytes.begin(), m_vecExpectedBytes.end()))
            << static_cast<int>(eSet);
    }
}

TEST_F(QsbWriteBatch, AnElementOfTheCallersOwnClassEncodesItselfWithEachInstructionSet)
{
    std::vector<QsbInstructionSetT> sets = PlanSets();
    sets.push_back(QsbInstructionSetT::eVirtual);
    for (const QsbInstructionSetT eSet : sets) {
        const ScopedInstructionSetC scoped(eSet);
        PointDefinitionC strange;
        strange.Add(PointDefinitionC::CreateElement(PD_POSITION, F::s_uiTypeFloatTriple));
        strange.Add(std::make_unique<StrangeIntensityC>());
        QsbC container;
        QsbStrategyC strategy;
        strategy.SetPointDefinition(&strange);
        ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), false, true));
        ASSERT_TRUE(container.WritePoints(m_vecRecords.data(), 300, strategy));
        ASSERT_TRUE(container.Close());
        const std::string strData = DataOf(300 * 14);
        for (std::size_t i = 0; i < 300; ++i)
            ASSERT_EQ(strData.substr(i * 14 + 12, 2), "\x42\x42") << i << ", set " << static_cast<int>(eSet);
    }
}

TEST_F(QsbWriteBatch, ReadsWhatItHasJustWritten)
{
    WriteFile();
    const std::size_t nRecordBytes = m_oDefinition.GetSizeInBytes();
    std::vector<char> read(5010 * nRecordBytes);
    QsbC container;
    QsbStrategyC strategy;
    ASSERT_TRUE(container.Open(BSS::HAL::WidePath(Path()), true, true));
    ASSERT_EQ(container.ReadPoints(strategy, read.data(), 10), 10u);
    // Over points that the window shows, and behind the end.
    ASSERT_TRUE(strategy.Seek(5));
    ASSERT_TRUE(container.WritePoints(m_vecRecords.data() + 100, 10, strategy));
    ASSERT_TRUE(strategy.Seek(5000));
    ASSERT_TRUE(container.WritePoints(m_vecRecords.data() + 200, 10, strategy));
    const auto expected = [&](std::size_t nFirst) {
        return m_vecExpectedBytes.begin() + static_cast<std::ptrdiff_t>(nFirst * nRecordBytes);
    };
    std::copy(expected(100), expected(110), expected(5));
    m_vecExpectedBytes.insert(m_vecExpectedBytes.end(), expected(200), expected(210));

    ASSERT_TRUE(strategy.Seek(0));
    ASSERT_EQ(container.ReadPoints(strategy, read.data(), 10000), 5010u);
    EXPECT_EQ(read, m_vecExpectedBytes);
    for (std::size_t i = 0; i < 5010; i += 3) {
        ASSERT_TRUE(strategy.Seek(i));
        ASSERT_EQ(container.ReadPoints(strategy, read.data(), 3), 3u);
        ASSERT_EQ(std::memcmp(read.data(), &*expected(i), 3 * nRecordBytes), 0) << i;
    }
    EXPECT_TRUE(container.Close());
}

} // namespace
