// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Opening and reading while the nth call of the C library, or the nth allocation, fails: for every n. Each
// run ends in a stated answer, delivers no wrong point, and leaves a reader that works.
#include "FaultInjection.h"
#include "ReaderTest.h"

#include "Sio/Sio_QsbReader.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <new>

namespace {

using namespace ReaderTest;
using Support::Call;
using Support::Fault;

constexpr std::uint32_t s_nPoints = 5;

/// What a run of open and read to the end gave. Kept without allocations: those are counted.
struct Outcome
{
    int opened = 4711;
    unsigned failedReads = 0;
    bool wrongMessage = false;
    bool wrongCount = false;
    std::uint32_t points = 0;
    double x[100] = {};
    int intensity[100] = {};
};

bool IsMessage(QsbReader& reader, const char* message)
{
    return std::string_view(reader.RetMsg()) == message;
}

/// Reads to the end; a batch that fails is tried once more.
void ReadAll(QsbReader& reader, QsbReadIterator& iterator, Outcome& run)
{
    for (unsigned batch = 0; batch < 20; ++batch) {
        std::uint64_t count = 4711;
        if (reader.Read(iterator, count) != 0) {
            run.wrongMessage |= !IsMessage(reader, s_szReadFailed);
            run.wrongCount |= count != 0;
            if (++run.failedReads > 1) return;
            continue;
        }
        if (count == 0) {
            run.wrongMessage |= !IsMessage(reader, s_szEnd);
            return;
        }
        for (std::uint64_t i = 0; i < count; ++i) {
            const QsbPoint* point = iterator.GetPoint(i);
            run.x[run.points] = point->x;
            run.intensity[run.points] = point->intensity;
            ++run.points;
        }
    }
}

class ReadFault : public Fixture, public testing::WithParamInterface<Call>
{
protected:
    ReadFault()
    {
        // The blocks of zeros, more than are read at once, make the walk ask for holes; the others are so
        // many that the memory of the list of blocks grows.
        Support::QsbBytes file;
        for (int i = 0; i < 1000; ++i)
            file.Block(0);
        for (std::uint32_t id = 100; id < 1000; ++id)
            file.Block(id).Entry(7, 30, id).Entry(7, 31, id).Entry(7, 32, id);
        file.Block(1).Entry(40, 100).Entry(5, 101).Data(Support::SmallPoints(s_nPoints));
        path = folder.Write("scan.qsb", file);
    }

    void ExpectRightPoints(const Outcome& run)
    {
        for (std::uint32_t i = 0; i < run.points; ++i) {
            EXPECT_EQ(run.x[i], i);
            EXPECT_EQ(run.intensity[i], static_cast<int>(100 + i));
        }
        EXPECT_FALSE(run.wrongMessage);
        EXPECT_FALSE(run.wrongCount);
    }

    void ExpectUsable(QsbReader& tested)
    {
        tested.Close();
        Outcome run;
        QsbReadIterator iterator(2);
        EXPECT_EQ(tested.Open(path.c_str()), 0);
        ReadAll(tested, iterator, run);
        EXPECT_EQ(run.points, s_nPoints);
        EXPECT_EQ(run.failedReads, 0u);
        ExpectRightPoints(run);
    }

    std::string path;
};

TEST_P(ReadFault, WhileOpeningAndReadingEndsInAStatedAnswerAndRightPoints)
{
    bool happened = true;
    unsigned runs = 0;
    for (unsigned n = 1; happened; ++n, ++runs) {
        SCOPED_TRACE(n);
        QsbReader tested;
        QsbReadIterator iterator(2);
        Outcome run;
        {
            const Fault fault(GetParam(), n);
            run.opened = tested.Open(path.c_str());
            if (run.opened == 0) ReadAll(tested, iterator, run);
            tested.Close();
            happened = fault.Happened();
        }
        if (run.opened != 0) {
            EXPECT_EQ(run.opened, -1);
            EXPECT_TRUE(IsMessage(tested, s_szNoQsbFile) || IsMessage(tested, s_szNotOpened))
                << tested.RetMsg();
        } else {
            EXPECT_EQ(run.points, s_nPoints); // a batch that failed comes when it is tried again
            EXPECT_LE(run.failedReads, happened ? 1u : 0u);
        }
        ExpectRightPoints(run);
        ExpectUsable(tested);
        ASSERT_LT(n, 10000u);
    }
    // Opening and reading does use each of these, but for the ones of writing.
    if (GetParam() != Call::Fwrite && GetParam() != Call::Ftello) {
        EXPECT_GT(runs, 1u);
    }
}

TEST_P(ReadFault, WhileReadingBatchesOfAnySizeDeliversEveryPointRightAndOnce)
{
    constexpr std::uint32_t points = 40000;
    const std::string large = folder.Write("large.qsb", Support::SmallScan(points));
    for (const unsigned size : {300u, 7000u}) { // through the window, and past it
        bool happened = true;
        for (unsigned n = 1; happened; ++n) {
            QsbReader tested;
            ASSERT_EQ(tested.Open(large.c_str()), 0);
            QsbReadIterator iterator(size);
            std::uint32_t done = 0, wrong = 0, failed = 0;
            {
                const Fault fault(GetParam(), n);
                while (done < points && failed < 2) {
                    std::uint64_t count = 4711;
                    if (tested.Read(iterator, count) != 0) ++failed;
                    for (std::uint64_t i = 0; i < count; ++i)
                        wrong += iterator.GetPoint(i)->x != done++;
                }
                happened = fault.Happened();
            }
            EXPECT_EQ(wrong, 0u);
            EXPECT_EQ(done, points);
            EXPECT_LE(failed, happened ? 1u : 0u);
            ASSERT_LT(n, 1000u);
        }
    }
}

TEST_P(ReadFault, WhileAskedWhetherAFileIsOneGivesFalseOrTrueAndRecovers)
{
    const boost::filesystem::path file(path);
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        bool answer = false;
        try {
            const Fault fault(GetParam(), n);
            happened = true;
            answer = SIO::QsbReaderC::IsQsbFile(file);
            happened = fault.Happened();
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(GetParam(), Call::Allocation); // the one thing it may throw
        }
        if (!happened) {
            EXPECT_TRUE(answer);
        }
        EXPECT_TRUE(SIO::QsbReaderC::IsQsbFile(file));
        ASSERT_LT(n, 10000u);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, ReadFault, testing::ValuesIn(Support::s_allCalls));

class ReaderFault : public Fixture
{
protected:
    /// Memory for an object whose construction may run out of it.
    template<typename T>
    struct Place
    {
        alignas(T) unsigned char bytes[sizeof(T)];
    };
};

TEST_F(ReaderFault, AReaderThatFoundNoMemoryAnswersNeutrallyAndNothingIsLost)
{
    bool happened = true;
    for (unsigned n = 1; happened; ++n) {
        Place<QsbReader> place;
        QsbReader* tested = nullptr;
        {
            const Fault fault(Call::Allocation, n);
            tested = new (place.bytes) QsbReader;
            happened = fault.Happened();
        }
        const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
        EXPECT_EQ(tested->Open(path.c_str()), happened ? -1 : 0);
        EXPECT_STREQ(tested->RetMsg(), happened ? "QsbReader: Out of memory." : "");
        QsbReadIterator iterator(2);
        std::uint64_t count = 4711, second = 0;
        EXPECT_EQ(tested->Read(iterator, count), happened ? -1 : 0);
        EXPECT_EQ(count, happened ? 0u : 2u);
        EXPECT_EQ(tested->GetNumPoints(), happened ? 0u : 2u);
        EXPECT_FALSE(tested->GetGridSize(count, second));
        EXPECT_EQ(tested->GetInstrumentHeight(), 0.0);
        EXPECT_FALSE(tested->HasColor() || tested->HasGrid() || tested->HasNoiseRatio());
        double matrix[16] = {};
        tested->GetTransformation(matrix);
        EXPECT_EQ(matrix[0] + matrix[5] + matrix[10] + matrix[15], 4.0);
        EXPECT_EQ(tested->Close(), 0);
        tested->~QsbReader();
        ASSERT_LT(n, 1000u);
    }
}

TEST_F(ReaderFault, AnIteratorThatFoundNoMemoryHoldsNoPointsAndEveryReadWithItFails)
{
    ASSERT_EQ(Open(Support::SmallScan(2)), 0);
    for (const unsigned size : {0u, 2u}) {
        bool happened = true;
        for (unsigned n = 1; happened; ++n) {
            Place<QsbReadIterator> place;
            QsbReadIterator* tested = nullptr;
            {
                const Fault fault(Call::Allocation, n);
                tested = new (place.bytes) QsbReadIterator(size);
                happened = fault.Happened();
            }
            if (tested->GetPoints() == nullptr && size != 0) {
                EXPECT_TRUE(happened);
                EXPECT_EQ(tested->GetPoint(0), nullptr);
                EXPECT_EQ(Read(*tested), s_failed);
                EXPECT_EQ(Read(*tested), s_failed);
            }
            tested->~QsbReadIterator();
            QsbReadIterator good(2);
            EXPECT_EQ(Read(good), (ReadResult{0, 2, ""}));
            ASSERT_LT(n, 1000u);
        }
    }
}

TEST_F(ReaderFault, AFileThatVanishesBetweenTheCheckAndTheOpeningDoesNotExist)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    {
        const Fault fault(Call::Fread, 1, [&path] { std::remove(path.c_str()); });
        EXPECT_EQ(reader.Open(path.c_str()), -1);
        EXPECT_TRUE(fault.Happened());
    }
    EXPECT_EQ(Message(), s_szNotThere);
    EXPECT_EQ(Open(Support::SmallScan(2)), 0);
}

TEST_F(ReaderFault, AFileThatIsSpoiltWhileItIsOpenedGivesAStatedAnswer)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    for (unsigned n = 1; n <= 3; ++n) {
        {
            const Fault fault(Call::Fread, n, [this] { folder.Write("scan.qsb", Support::BytesT(100)); });
            const int opened = reader.Open(path.c_str());
            EXPECT_TRUE(opened == 0 || Message() == s_szNoQsbFile || Message() == s_szNotOpened);
        }
        reader.Close();
        EXPECT_EQ(Open(Support::SmallScan(2)), 0);
        reader.Close();
    }
}

TEST_F(ReaderFault, AReadErrorAtABlockHeadIsAFailureNotTheEndOfTheFile)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    unsigned reads = 0;
    {
        const Fault fault(Call::Fread, 0);
        EXPECT_TRUE(SIO::QsbReaderC::IsQsbFile(path));
        reads = fault.Count();
    }
    for (unsigned n = 1; n <= reads; ++n) { // the last one finds the end of the file
        const Fault fault(Call::Fread, n);
        EXPECT_FALSE(SIO::QsbReaderC::IsQsbFile(path)) << n;
    }
}

TEST_F(ReaderFault, ABatchAllocatesNothingOnceTheIteratorIsBound)
{
    ASSERT_EQ(Open(Support::SmallScan(6)), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator).count, 2u);
    std::uint64_t count = 0;
    const Fault fault(Call::Allocation, 0);
    EXPECT_EQ(reader.Read(iterator, count), 0);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(fault.Count(), 0u);
}

TEST_F(ReaderFault, AFailedReadLeavesTheFileAtWhichTheReaderGoesOn)
{
    constexpr std::uint32_t batch = 20000; // larger than any look-ahead
    ASSERT_EQ(Open(Support::SmallScan(2 * batch)), 0);
    QsbReadIterator iterator(batch);
    EXPECT_EQ(Read(iterator).count, batch);
    for (const Call call : {Call::Fread, Call::Fseeko}) {
        std::uint64_t count = 4711;
        const Fault fault(call, 1);
        EXPECT_EQ(reader.Read(iterator, count), -1);
        EXPECT_EQ(count, 0u);
        EXPECT_TRUE(fault.Happened());
    }
    EXPECT_EQ(Message(), s_szReadFailed);
    EXPECT_EQ(iterator.GetPoint(0)->x, 0);
    EXPECT_EQ(Read(iterator), (ReadResult{0, batch, ""}));
    EXPECT_EQ(iterator.GetPoint(0)->x, batch);
}

} // namespace
