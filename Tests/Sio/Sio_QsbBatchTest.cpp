// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Whole batches of plain records, in every instruction set and every layout, read from and written to files,
// against the second decoder: the same bits, and not a byte more than the elements that a file carries.
#include "API_Hdr/GMAT_Algebra.h"
#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReader.h"
#include "WriteTest.h"

#include <cstring>
#include <iomanip>
#include <random>
#include <sstream>
#include <tuple>

namespace SIO {

static void PrintTo(QsbInstructionSetT set, std::ostream* out)
{
    static const char* const names[] = {"virtual", "plain", "baseline", "AVX2"};
    *out << names[static_cast<int>(set)];
}

} // namespace SIO

namespace {

using SIO::QsbInstructionSetT;
using SIO::QsbPointC;
using Support::BytesT;
using Support::Layout;
using Support::PlainPoint;
using Support::QsbBytes;

constexpr std::uint32_t s_nPoints = 37; // no multiple of anything that a vector holds

/// What a file's point makes of a record that holds other things already.
QsbPointC Delivered(const Layout& layout, const PlainPoint& point, QsbPointC before)
{
    const auto low = [](double value, unsigned bits) { return Support::LowBits(value, bits); };
    before.x = point.x;
    before.y = point.y;
    before.z = point.z;
    if (layout.intensity != 0) before.intensity = static_cast<std::uint16_t>(low(point.intensity, 16));
    if (layout.noise != 0) before.levelOfNoise = static_cast<std::uint16_t>(low(point.noise, 16));
    if (layout.grid != 0) before.gridIndex0 = static_cast<std::uint32_t>(low(point.grid0, 32));
    if (layout.grid != 0) before.gridIndex1 = static_cast<std::uint32_t>(low(point.grid1, 32));
    if (layout.color == 0) return before;
    before.red = static_cast<std::uint8_t>(low(point.red, 8));
    before.green = static_cast<std::uint8_t>(low(point.green, 8));
    before.blue = static_cast<std::uint8_t>(low(point.blue, 8));
    return before;
}

/// The byte at `offset` of a record, alignment included.
char ByteOf(const QsbPointC& record, std::size_t offset)
{
    return reinterpret_cast<const char*>(&record)[offset];
}

std::string TextOf(const QsbPointC& p)
{
    std::ostringstream text;
    text << std::setprecision(17) << p.x << ' ' << p.y << ' ' << p.z << ", " << p.intensity << ", "
         << p.levelOfNoise << ", " << p.gridIndex0 << ' ' << p.gridIndex1 << ", " << int{p.red} << ' '
         << int{p.green} << ' ' << int{p.blue};
    return text.str();
}

bool IsSameRecord(const QsbPointC& a, const QsbPointC& b)
{
    return Support::IsSame(a.x, b.x) && Support::IsSame(a.y, b.y) && Support::IsSame(a.z, b.z) &&
           a.red == b.red && a.green == b.green && a.blue == b.blue && a.intensity == b.intensity &&
           a.levelOfNoise == b.levelOfNoise && a.gridIndex0 == b.gridIndex0 && a.gridIndex1 == b.gridIndex1;
}

class Batch : public SioTest::WriteTest,
              public testing::WithParamInterface<std::tuple<std::uint32_t, QsbInstructionSetT>>
{
protected:
    Batch() : before(SIO::GetInstructionSet()) { SIO::SetInstructionSet(std::get<1>(GetParam())); }
    ~Batch() override { SIO::SetInstructionSet(before); }

    /// A matrix of one of the sorts that decoders like to treat apart.
    std::vector<double> AnyMatrix()
    {
        std::vector<double> elements{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        const auto sort = random() % 4;
        if (sort == 0) return elements;
        for (std::size_t i = 0; i < (sort == 1 ? 12u : 16u); ++i) {
            elements[i] = sort == 3 ? Support::OddNumber(random)
                                    : std::uniform_real_distribution<double>(-9, 9)(random);
        }
        return elements;
    }

    void FillWithNoise(std::vector<QsbPointC>& records)
    {
        const BytesT noise = Support::RandomBytes(random, records.size() * sizeof(QsbPointC));
        std::memcpy(static_cast<void*>(records.data()), noise.data(), noise.size());
    }

    /// Reads the file in batches of this size into the records, which hold noise; the rest must stay.
    void ReadBack(std::uint32_t size, bool transform, std::vector<QsbPointC>& records)
    {
        SIO::QsbReaderC reader;
        ASSERT_EQ(reader.Open(Path(), transform ? 1 : 0), 0u);
        SIO::QsbReaderIteratorC iterator(size);
        for (std::uint32_t done = 0; done < s_nPoints; iterator.Next()) {
            SIO::QsbPointArrayIteratorC target(records.data() + done);
            std::int32_t count = 0;
            ASSERT_EQ(reader.Read(iterator, target, count), 0u);
            ASSERT_GT(count, 0);
            done += static_cast<std::uint32_t>(count);
        }
    }

    QsbInstructionSetT before;
    std::mt19937 random{std::get<0>(GetParam())};
};

TEST_P(Batch, IsDecodedAsTheSecondDecoderDoesAndNothingElseIsTouched)
{
    for (const Layout& layout : Support::AllLayouts(std::get<0>(GetParam()))) {
        const std::vector<double> matrix = AnyMatrix();
        const BytesT data = Support::RandomBytes(random, s_nPoints * Support::RecordBytes(layout));
        QsbBytes file;
        Support::AddElements(file.Block(1).Matrix(matrix), layout);
        folder.Write("scan.qsb", file.Data(data));
        for (const bool transform : {true, false}) {
            std::vector<QsbPointC> records(s_nPoints + 1);
            FillWithNoise(records);
            const std::vector<QsbPointC> noise = records;
            ReadBack(transform ? 100 : 5, transform, records);
            for (std::uint32_t i = 0; i < s_nPoints; ++i) {
                PlainPoint point =
                    Support::PlainDecode(layout, data.data() + i * Support::RecordBytes(layout));
                if (transform) Support::PlainTransform(matrix, point);
                const QsbPointC expected = Delivered(layout, point, noise[i]);
                ASSERT_TRUE(IsSameRecord(records[i], expected))
                    << i << ": " << TextOf(records[i]) << " instead of " << TextOf(expected);
                ASSERT_EQ(ByteOf(records[i], 27), ByteOf(noise[i], 27)) << "the byte of alignment";
            }
            ASSERT_EQ(std::memcmp(&records[s_nPoints], &noise[s_nPoints], sizeof(QsbPointC)), 0);
        }
    }
}

TEST_P(Batch, WithDuplicateElementsTheLaterOnesWin)
{
    const BytesT data = Support::RandomBytes(
        random,
        s_nPoints * (Support::RecordBytes({std::get<0>(GetParam()), 5, 2, 21, 7}) + 4 + 2 + 2 + 8 + 4));
    QsbBytes file;
    file.Block(1).Entry(std::get<0>(GetParam()), 100).Entry(5, 101).Entry(8, 101).Entry(4, 101);
    file.Entry(2, 102).Entry(5, 102).Entry(21, 103).Entry(23, 103).Entry(7, 104).Entry(7, 104);
    folder.Write("scan.qsb", file.Data(data));
    std::vector<QsbPointC> records(s_nPoints);
    ReadBack(10, false, records);
    const std::size_t size = data.size() / s_nPoints;
    for (std::uint32_t i = 0; i < s_nPoints; ++i) {
        const std::uint8_t* behind = data.data() + i * size + (std::get<0>(GetParam()) == 40 ? 12 : 24);
        ASSERT_EQ(records[i].intensity, behind[6] + 256 * behind[7]);
        ASSERT_EQ(records[i].levelOfNoise, behind[9] + 256 * behind[10]);
        ASSERT_EQ(records[i].gridIndex0,
                  Support::NumberAt(data, static_cast<std::size_t>(behind + 15 - data.data()), 4));
        ASSERT_EQ(records[i].blue, behind[29]);
    }
}

TEST_P(Batch, OfPlainRecordsIsEncodedAsTheSecondEncoderDoes)
{
    for (const Layout& layout : Support::AllLayouts(std::get<0>(GetParam()))) {
        SIO::PointDefinitionC definition;
        SioTest::Define(definition, layout);
        std::vector<QsbPointC> records(s_nPoints);
        FillWithNoise(records);
        SioTest::Scan writer;
        ASSERT_TRUE(writer.Open(Path(), false, true));
        writer.strategy.SetPointDefinition(&definition);
        ASSERT_TRUE(writer.container.WritePoints(records.data(), 5, writer.strategy));
        ASSERT_TRUE(writer.container.WritePoints(records.data() + 5, s_nPoints - 5, writer.strategy));
        ASSERT_TRUE(writer.container.Close());
        const BytesT file = File();
        const std::size_t size = Support::RecordBytes(layout);
        for (std::uint32_t i = 0; i < s_nPoints; ++i) {
            const QsbPointC& r = records[i];
            const PlainPoint point{r.x,
                                   r.y,
                                   r.z,
                                   static_cast<double>(r.intensity),
                                   static_cast<double>(r.levelOfNoise),
                                   static_cast<double>(r.red),
                                   static_cast<double>(r.green),
                                   static_cast<double>(r.blue),
                                   255,
                                   static_cast<double>(r.gridIndex0),
                                   static_cast<double>(r.gridIndex1)};
            const BytesT stored = Support::Slice(file, file.size() - (s_nPoints - i) * size, size);
            const PlainPoint decoded = Support::PlainDecode(layout, stored.data());
            const BytesT expected = Support::PlainEncode(layout, point);
            // Not a number is one whatever its bits.
            ASSERT_TRUE(SioTest::IsSamePoint(decoded, Support::PlainDecode(layout, expected.data()))) << i;
            if (layout.color != 0) {
                ASSERT_EQ(stored.back(), 255);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Sets, Batch,
    testing::Combine(testing::Values(40u, 41u),
                     testing::Values(QsbInstructionSetT::eVirtual, QsbInstructionSetT::ePlain,
                                     QsbInstructionSetT::eBaseline, QsbInstructionSetT::eAvx2)));

} // namespace
