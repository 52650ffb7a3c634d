// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Files that are spoilt in one place, cut at every length, changed in every byte: a clear answer, never a
// crash.
#include "ReaderTest.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

using namespace ReaderTest;
using Support::BytesT;
using Support::QsbBytes;

// Where things stand in Support::SmallScan.
constexpr std::size_t s_nVersion = 12 + 8;
constexpr std::size_t s_nBlock = 28;
constexpr std::size_t s_nPositionEntry = s_nBlock + 12;
constexpr std::size_t s_nIntensityEntry = s_nPositionEntry + 16;
constexpr std::size_t s_nData = s_nIntensityEntry + 16;

/// One 32-bit number of a good file replaced, and the message of Open.
struct SpoiltRow
{
    const char* what;
    std::size_t offset;
    std::uint32_t value;
    const char* message;
};

void PrintTo(const SpoiltRow& row, std::ostream* out)
{
    *out << row.what;
}

class Spoilt : public Fixture, public testing::WithParamInterface<SpoiltRow>
{};

TEST_P(Spoilt, FileIsRefusedWithItsMessageAndAGoodFileOpensNext)
{
    const BytesT good = Support::SmallScan(3).Get();
    EXPECT_EQ(Open(Support::With32(good, GetParam().offset, GetParam().value)), -1) << GetParam().what;
    EXPECT_EQ(Message(), GetParam().message) << GetParam().what;
    EXPECT_EQ(Open(good), 0);
    EXPECT_EQ(reader.GetNumPoints(), 3u);
}

INSTANTIATE_TEST_SUITE_P(
    OneField, Spoilt,
    testing::Values(
        SpoiltRow{"first identifier", 0, 1, s_szNoQsbFile},
        SpoiltRow{"first identifier backwards", 0, 0x54908712, s_szNoQsbFile},
        SpoiltRow{"header of the file header no multiple of 16", 4, 15, s_szNoQsbFile},
        SpoiltRow{"header of the file header gone", 4, 0, s_szNoQsbFile},
        SpoiltRow{"header of the file header of 4 GiB", 4, 0xFFFFFFF0, s_szNoQsbFile},
        SpoiltRow{"data in the file header up to the middle of a head", 8, 75, s_szNoQsbFile},
        SpoiltRow{"data in the file header beyond the end", 8, 0xFFFFFFFF, s_szNotOpened},
        SpoiltRow{"tag of the version", 16, 2, s_szNotOpened},
        SpoiltRow{"version 0", s_nVersion, 0, s_szNotOpened},
        SpoiltRow{"version between 1 and 2", s_nVersion, 0x18000, s_szNotOpened},
        SpoiltRow{"identifier of the point cloud", s_nBlock, 2, s_szNotOpened},
        SpoiltRow{"header of the point cloud no multiple of 16", s_nBlock + 4, 33, s_szNoQsbFile},
        SpoiltRow{"header of the point cloud beyond the end", s_nBlock + 4, 0xFFFFFFF0, s_szNoQsbFile},
        SpoiltRow{"data of the point cloud ending in the middle of a head", s_nBlock + 8, 41, s_szNoQsbFile},
        SpoiltRow{"position type", s_nPositionEntry, 42, s_szNotOpened},
        SpoiltRow{"position tag too large", s_nPositionEntry + 4, 105, s_szNotOpened},
        SpoiltRow{"intensity type", s_nIntensityEntry, 99, s_szIncomplete},
        SpoiltRow{"intensity tag meaning colour", s_nIntensityEntry + 4, 104, s_szIncomplete},
        SpoiltRow{"intensity tag that is skipped", s_nIntensityEntry + 4, 27, s_szIncomplete},
        SpoiltRow{"intensity tag too large", s_nIntensityEntry + 4, 0xFFFFFFFF, s_szNotOpened}));

class Damaged : public Fixture
{};

TEST_F(Damaged, APointCountGreaterThanTheDataIsRefused)
{
    QsbBytes file;
    file.Block(3).Entry(7, 1, 4).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(3));
    EXPECT_EQ(Open(file), -1);
    EXPECT_EQ(Message(), s_szNotOpened);
}

TEST_F(Damaged, AHeaderThatClaims4GiBInAFileOf100BytesIsRefused)
{
    EXPECT_EQ(Open(Support::Truncated(QsbBytes().Block(1).ClaimHeaderBytes(0xFFFFFFF0).Get(), 100)), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Damaged, BytesOfAnythingElseAreNoQsbFile)
{
    const std::string text = "%PDF-1.4 and so on, many bytes of something else altogether\n";
    EXPECT_EQ(Open(BytesT(text.begin(), text.end())), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

/// What Open says to a file of SmallScan(3) cut to a length.
std::string MessageOfLength(std::size_t length)
{
    if (length == 0 || length == s_nBlock) return s_szNotOpened; // a whole chain, but nothing in it
    return length < s_nData ? s_szNoQsbFile : "";
}

TEST_F(Damaged, EveryTruncationLengthIsAnsweredByWhatIsLeft)
{
    const BytesT whole = Support::SmallScan(3).Get();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string expected = MessageOfLength(length);
        EXPECT_EQ(Open(Support::Truncated(whole, length)), expected.empty() ? 0 : -1) << length;
        EXPECT_EQ(Message(), expected) << length;
        reader.Close();
    }
}

TEST_F(Damaged, EveryTruncationOfTheDataDeliversTheWholePointsAndThenFails)
{
    const BytesT whole = Support::SmallScan(3).Get();
    for (std::size_t length = s_nData; length <= whole.size(); ++length) {
        ASSERT_EQ(Open(Support::Truncated(whole, length)), 0) << length;
        EXPECT_EQ(reader.GetNumPoints(), 3u);
        QsbReadIterator iterator(1);
        for (std::size_t i = 0; i < (length - s_nData) / 14; ++i) {
            ASSERT_EQ(Read(iterator), (ReadResult{0, 1, ""})) << length;
            EXPECT_EQ(iterator.GetPoint(0)->intensity, 100 + i);
        }
        EXPECT_EQ(Read(iterator), length == whole.size() ? s_end : s_failed) << length;
        reader.Close();
    }
}

TEST_F(Damaged, EveryTruncationOfARichFileIsOneOfTheStatedAnswers)
{
    const BytesT whole = Support::RichScan(3).Get();
    const std::string path = folder.Write("scan.qsb", whole);
    for (std::size_t length = whole.size(); length-- > 0;) {
        ASSERT_TRUE(Support::Resize(path, length));
        const int opened = reader.Open(path.c_str());
        EXPECT_TRUE(opened == 0 ? Message().empty()
                                : Message() == s_szNoQsbFile || Message() == s_szNotOpened)
            << length << ' ' << Message();
        QsbReadIterator iterator(2);
        EXPECT_LE(Read(iterator).count, 2u);
        reader.Close();
    }
}

/// A file whose bytes are changed in place, one at a time.
class Changed : public Fixture
{
protected:
    ~Changed() override { std::fclose(m_file); }

    void Write(const BytesT& bytes)
    {
        m_path = folder.Write("scan.qsb", bytes);
        m_file = std::fopen(m_path.c_str(), "r+b");
        ASSERT_NE(m_file, nullptr);
        std::setvbuf(m_file, nullptr, _IONBF, 0);
    }

    void Set(std::size_t offset, std::uint8_t value)
    {
        std::fseek(m_file, static_cast<long>(offset), SEEK_SET);
        ASSERT_EQ(std::fputc(value, m_file), value);
    }

    /// Opens and reads to the end or a failure; every answer must be a stated one.
    void ExpectStatedAnswers()
    {
        static const std::string messages[] = {s_szNoQsbFile, s_szNotOpened, s_szIncomplete};
        if (reader.Open(m_path.c_str()) != 0) {
            ASSERT_NE(std::find(std::begin(messages), std::end(messages), Message()), std::end(messages))
                << Message();
            return;
        }
        QsbReadIterator iterator(2);
        ReadResult read = Read(iterator);
        for (int batches = 0; read.result == 0 && read.message != s_szEnd; ++batches) {
            ASSERT_LE(read.count, 2u);
            ASSERT_LE(batches, 1000);
            read = Read(iterator);
        }
        ASSERT_TRUE(read == s_end || read == s_failed) << read;
        reader.Close();
    }

private:
    std::string m_path;
    std::FILE* m_file = nullptr;
};

TEST_F(Changed, EveryValueOfEveryByteOfASmallFileGivesAStatedAnswer)
{
    const BytesT good = Support::SmallScan(2).Get();
    Write(good);
    for (std::size_t offset = 0; offset < good.size(); ++offset) {
        for (unsigned value = 0; value < 256; ++value) {
            Set(offset, static_cast<std::uint8_t>(value));
            ExpectStatedAnswers();
            ASSERT_FALSE(HasFailure()) << "byte " << offset << " = " << value;
        }
        Set(offset, good[offset]);
    }
}

TEST_F(Changed, EveryBitOfARichFileGivesAStatedAnswer)
{
    const BytesT good = Support::RichScan(2).Block(3).Entry(9, 1, 1).Entry(5, 101).Data(BytesT(52)).Get();
    Write(good);
    for (std::size_t bit = 0; bit < 8 * good.size(); ++bit) {
        Set(bit / 8, static_cast<std::uint8_t>(good[bit / 8] ^ 1u << bit % 8));
        ExpectStatedAnswers();
        ASSERT_FALSE(HasFailure()) << "bit " << bit;
        Set(bit / 8, good[bit / 8]);
    }
}

TEST_F(Changed, AnUnchangedFileStillGivesItsPoints)
{
    Write(Support::SmallScan(2).Get());
    ExpectStatedAnswers();
    ASSERT_EQ(reader.Open(folder.Path("scan.qsb").c_str()), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
}

} // namespace
