// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Readers of different threads know nothing of each other.
#include "ReaderTest.h"

#include <ScanReader/qsb.h>
#include <thread>

namespace {

using namespace ReaderTest;

/// Reads the whole of a scan of small points again and again. Returns how many points were not as written.
unsigned CountWrong(const std::string& path, std::uint32_t points, int rounds)
{
    unsigned wrong = 0;
    for (int round = 0; round < rounds; ++round) {
        QsbReader reader;
        if (reader.Open(path.c_str()) != 0) return points;
        QsbReadIterator batch(777);
        std::uint32_t next = 0;
        std::uint64_t count = 0;
        while (reader.Read(batch, count) == 0 && count > 0) {
            for (std::uint64_t i = 0; i < count; ++i, ++next)
                wrong += batch.GetPoint(i)->intensity != static_cast<std::uint16_t>(100 + next) ||
                         batch.GetPoint(i)->x != static_cast<float>(next);
        }
        wrong += next != points;
        // The log is common to all.
        if (reader.Open((path + ".missing").c_str()) != -1) ++wrong;
    }
    return wrong;
}

TEST(ReaderThreads, TwoReadersInTwoThreadsEachDeliverTheirOwnScan)
{
    const Support::ScanFolder folder;
    const std::string paths[] = {folder.Write("a.qsb", Support::SmallScan(30000)),
                                 folder.Write("b.qsb", Support::SmallScan(12345, 3))};
    unsigned wrong[] = {1, 1};
    std::thread first([&] { wrong[0] = CountWrong(paths[0], 30000, 10); });
    std::thread second([&] { wrong[1] = CountWrong(paths[1], 12345, 25); });
    first.join();
    second.join();
    EXPECT_EQ(wrong[0], 0u);
    EXPECT_EQ(wrong[1], 0u);
}

TEST(ReaderThreads, AReaderMayGoFromThreadToThread)
{
    const Support::ScanFolder folder;
    const std::string path = folder.Write("a.qsb", Support::SmallScan(30));
    qsb_reader* reader = nullptr;
    std::thread([&] { reader = qsb_open(path.c_str(), nullptr, 0); }).join();
    ASSERT_NE(reader, nullptr);
    qsb_point points[40];
    std::size_t count = 0;
    std::thread([&] { (void)qsb_read(reader, points, sizeof points[0], 40, &count); }).join();
    EXPECT_EQ(count, 30u);
    std::thread([&] { qsb_close(reader); }).join();
}

} // namespace
