// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// When the progress bar is drawn, with a clock that the test turns.
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_Progress.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;

class Progress : public testing::Test
{
protected:
    /// Lets `work` use a bar over 200 units and returns what it drew.
    template<typename WorkT>
    std::string DrawnBy(WorkT work)
    {
        const std::string path = m_directory.Narrow("stream");
        std::FILE* stream = std::fopen(path.c_str(), "wb");
        {
            Tool::ProgressC progress("reading", 200, stream, [this] { return m_oNow; });
            work(progress);
        }
        std::fclose(stream);
        return Support::ReadAll(path);
    }

    const Support::TemporaryDirectory m_directory;
    std::chrono::steady_clock::time_point m_oNow;
};

TEST_F(Progress, NothingIsDrawnInTheFirstSecond)
{
    EXPECT_EQ(DrawnBy([this](Tool::ProgressC& progress) {
                  m_oNow += milliseconds(999);
                  progress.Advance(100);
              }),
              "");
}

TEST_F(Progress, AfterASecondTheBarIsDrawnAndErasedAtTheEnd)
{
    EXPECT_EQ(DrawnBy([this](Tool::ProgressC& progress) {
                  m_oNow += milliseconds(1000);
                  progress.Advance(100);
              }),
              "\rreading [###############               ]  50 %\x1b[K\r\x1b[K");
}

TEST_F(Progress, TheBarIsDrawnTenTimesASecondAtMost)
{
    const std::string drawn = DrawnBy([this](Tool::ProgressC& progress) {
        m_oNow += milliseconds(1000);
        for (int i = 0; i < 100; ++i, m_oNow += milliseconds(10))
            progress.Advance(1);
    });
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), '%'), 10);
}

} // namespace
