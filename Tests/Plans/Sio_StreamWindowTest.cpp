// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Looking at a file through the window shows the file, in whatever order it is asked.
#include "Sio/Sio_StreamWindow.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Plans/PlanCases.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

using SIO::StreamWindowC;

std::string PatternOf(std::size_t nBytes)
{
    std::mt19937 random(static_cast<unsigned int>(nBytes));
    std::string strBytes(nBytes, '\0');
    for (char& c : strBytes)
        c = static_cast<char>(random());
    return strBytes;
}

class StreamWindow : public testing::Test
{
protected:
    /// A file with these bytes, seen through the window.
    void Write(const std::string& strBytes, const char* mode = "rb")
    {
        m_strBytes = strBytes;
        Support::WriteAll(m_oDirectory.Narrow("file"), strBytes);
        m_pStream.reset(BSS::HAL::OpenStream(m_oDirectory.Wide("file"), mode));
        ASSERT_NE(m_pStream, nullptr);
        m_oWindow.Attach(m_pStream.get());
    }

    std::string View(std::uint64_t ullOffset, std::size_t nBytes)
    {
        std::size_t nShown = 0;
        const char* const pBytes = m_oWindow.View(ullOffset, nBytes, nShown);
        return std::string(pBytes, nShown);
    }

    std::string Expected(std::uint64_t ullOffset, std::size_t nBytes) const
    {
        return ullOffset < m_strBytes.size() ? m_strBytes.substr(ullOffset, nBytes) : std::string();
    }

    Support::TemporaryDirectory m_oDirectory;
    std::string m_strBytes;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_pStream{nullptr, &std::fclose};
    StreamWindowC m_oWindow;
};

TEST_F(StreamWindow, ShowsNothingOfAnEmptyFile)
{
    Write("");
    EXPECT_EQ(View(0, 12), "");
    EXPECT_FALSE(m_oWindow.HasFailed());
}

TEST_F(StreamWindow, ShowsWhatThereIsOfAShortFile)
{
    Write("0123456789");
    EXPECT_EQ(View(0, 12), "0123456789");
    EXPECT_EQ(View(4, 12), "456789");
    EXPECT_EQ(View(10, 12), "");
    EXPECT_EQ(View(1000000, 12), "");
    EXPECT_EQ(View(2, 3), "234");
    EXPECT_FALSE(m_oWindow.HasFailed());
}

TEST_F(StreamWindow, ShowsEveryByteWhenReadOnWithAnyStep)
{
    Write(PatternOf(400000));
    for (const std::size_t nStep :
         {std::size_t{12}, std::size_t{4096}, std::size_t{5000}, std::size_t{70001}}) {
        for (std::uint64_t ullOffset = 0; ullOffset <= m_strBytes.size(); ullOffset += nStep)
            ASSERT_EQ(View(ullOffset, nStep), Expected(ullOffset, nStep)) << ullOffset;
    }
}

TEST_F(StreamWindow, ShowsTheRightBytesAfterJumpsOfAnySize)
{
    Write(PatternOf(1000000));
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        const std::uint64_t ullOffset = random() % (random() % 2 == 0 ? 1100000 : 5000);
        const std::size_t nBytes = random() % (random() % 4 == 0 ? StreamWindowC::s_nLargest + 1 : 300);
        ASSERT_EQ(View(ullOffset, nBytes), Expected(ullOffset, nBytes)) << ullOffset << " " << nBytes;
    }
}

TEST_F(StreamWindow, KeepsWhatOverlapsWhenItMovesOn)
{
    Write(PatternOf(10000));
    EXPECT_EQ(View(0, 4000), Expected(0, 4000));
    // The file changes beneath: bytes that the window had come from before, bytes that it had not from after.
    Support::WriteAll(m_oDirectory.Narrow("file"), std::string(10000, 'x'));
    EXPECT_EQ(View(3000, 2000), Expected(3000, 1096) + std::string(904, 'x'));
}

TEST_F(StreamWindow, ReadsAgainWhenItHasForgotten)
{
    Write(PatternOf(10000));
    EXPECT_EQ(View(0, 100), Expected(0, 100));
    Support::WriteAll(m_oDirectory.Narrow("file"), std::string(10000, 'x'));
    m_oWindow.Forget();
    EXPECT_EQ(View(0, 100), std::string(100, 'x'));
}

TEST_F(StreamWindow, ReadsIntoForeignMemoryAndGoesOnShowing)
{
    Write(PatternOf(500000));
    std::string strRead(200000, '\0');
    EXPECT_EQ(View(0, 12), Expected(0, 12));
    EXPECT_TRUE(m_oWindow.Read(100, strRead.size(), strRead.data()));
    EXPECT_EQ(strRead, Expected(100, strRead.size()));
    EXPECT_EQ(View(12, 12), Expected(12, 12));
    EXPECT_TRUE(m_oWindow.Read(200100, strRead.size(), strRead.data()));
    EXPECT_EQ(strRead, Expected(200100, strRead.size()));
}

TEST_F(StreamWindow, RefusesToReadMoreThanThereIsAndGoesOn)
{
    Write(PatternOf(1000));
    char acRead[600];
    EXPECT_FALSE(m_oWindow.Read(500, sizeof acRead, acRead));
    EXPECT_TRUE(m_oWindow.Read(400, sizeof acRead, acRead));
    EXPECT_EQ(std::string(acRead, sizeof acRead), Expected(400, sizeof acRead));
    EXPECT_EQ(View(999, 12), Expected(999, 1));
}

TEST_F(StreamWindow, SeesAFileThatHasGrown)
{
    Write("0123456789");
    EXPECT_EQ(View(5, 10), "56789");
    Support::WriteAll(m_oDirectory.Narrow("file"), "0123456789abcdef");
    EXPECT_EQ(View(5, 10), "56789abcde");
}

TEST_F(StreamWindow, TellsAnErrorFromTheEnd)
{
    Write("0123456789");
    EXPECT_EQ(View(10, 12), "");
    EXPECT_FALSE(m_oWindow.HasFailed());
    // A stream that is only written cannot be read.
    Write("", "ab");
    EXPECT_EQ(View(0, 12), "");
    EXPECT_TRUE(m_oWindow.HasFailed());
    char acRead[4];
    EXPECT_FALSE(m_oWindow.Read(0, sizeof acRead, acRead));
}

TEST_F(StreamWindow, FailsAtPositionsThatNoFileHas)
{
    Write("0123456789");
    EXPECT_EQ(View(std::uint64_t{1} << 63, 12), "");
    EXPECT_TRUE(m_oWindow.HasFailed());
    EXPECT_EQ(View(2, 3), "234");
    EXPECT_FALSE(m_oWindow.HasFailed());
}

TEST_F(StreamWindow, ShowsWhatWasWrittenThroughTheSameStream)
{
    Write(PatternOf(10000), "r+b");
    EXPECT_EQ(View(0, 100), Expected(0, 100));
    m_oWindow.Forget();
    ASSERT_TRUE(BSS::HAL::SeekStream(m_pStream.get(), 50));
    ASSERT_EQ(std::fwrite("written", 1, 7, m_pStream.get()), 7u);
    m_strBytes.replace(50, 7, "written");
    EXPECT_EQ(View(0, 100), Expected(0, 100));
    EXPECT_EQ(View(57, 100), Expected(57, 100));
}

} // namespace
