// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// C streams on wide paths: what is opened, what is refused, and offsets beyond 4 GiB.
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace BSS::HAL;

namespace {

struct CloseStream
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};
using StreamPtr = std::unique_ptr<std::FILE, CloseStream>;

constexpr std::uint64_t FAR_OFFSET = (5ull << 30) + 3;

class Stream : public testing::Test
{
protected:
    StreamPtr Open(const std::string& name, const char* mode) const
    {
        return StreamPtr(OpenStream(WidePath(m_directory.Narrow(name)), mode));
    }

    void Make(const std::string& name, const std::string& bytes) const
    {
        Support::WriteAll(m_directory.Narrow(name), bytes);
    }

    std::string Bytes(const std::string& name) const { return Support::ReadAll(m_directory.Narrow(name)); }

    // A file of zeros with one 'x' at FAR_OFFSET.
    void MakeSparse(const std::string& name) const
    {
        const StreamPtr stream = Open(name, "wb");
        ASSERT_TRUE(stream && SeekStream(stream.get(), FAR_OFFSET));
        ASSERT_EQ(std::fputc('x', stream.get()), 'x');
    }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(Stream, ReadsWhatIsThere)
{
    Make("a", "hello");
    const StreamPtr stream = Open("a", "rb");
    ASSERT_TRUE(stream);
    char text[8] = {};
    EXPECT_EQ(std::fread(text, 1, sizeof text, stream.get()), 5u);
    EXPECT_STREQ(text, "hello");
}

TEST_F(Stream, MissingFileIsRefusedForReading)
{
    EXPECT_FALSE(Open("none", "rb"));
    EXPECT_FALSE(Open("none", "r+b"));
}

TEST_F(Stream, WritingMakesAndTruncates)
{
    Make("a", "long old text");
    EXPECT_TRUE(Open("a", "wb"));
    EXPECT_TRUE(Open("b", "w+b"));
    EXPECT_EQ(Bytes("a"), "");
    EXPECT_TRUE(Open("b", "rb"));
}

TEST_F(Stream, ReadWriteModeKeepsWhatIsThere)
{
    Make("a", "hello");
    {
        const StreamPtr stream = Open("a", "r+b");
        ASSERT_TRUE(stream);
        std::fputc('J', stream.get());
    }
    EXPECT_EQ(Bytes("a"), "Jello");
}

TEST_F(Stream, AppendModeWritesAtTheEnd)
{
    Make("a", "one");
    std::fputs("two", Open("a", "ab").get());
    EXPECT_EQ(Bytes("a"), "onetwo");
}

TEST_F(Stream, UnknownModeIsRefusedAndChangesNothing)
{
    Make("a", "hello");
    EXPECT_FALSE(Open("a", "w"));
    EXPECT_FALSE(Open("a", ""));
    EXPECT_EQ(Bytes("a"), "hello");
}

TEST_F(Stream, DirectoryIsRefused)
{
    EXPECT_FALSE(StreamPtr(OpenStream(m_directory.Wide(""), "rb")));
    EXPECT_FALSE(StreamPtr(OpenStream(m_directory.Wide(""), "wb")));
}

TEST_F(Stream, PathWithANullCharacterIsRefused)
{
    Make("a", "hello");
    EXPECT_FALSE(StreamPtr(OpenStream(m_directory.Wide("a") + std::wstring(1, L'\0') + L"b", "rb")));
}

TEST_F(Stream, EmptyPathIsRefused)
{
    EXPECT_FALSE(StreamPtr(OpenStream(L"", "rb")));
}

TEST_F(Stream, SeeksAndTellsBeyondFourGiB)
{
    MakeSparse("far");
    const StreamPtr stream = Open("far", "rb");
    std::uint64_t offset = 0;
    ASSERT_TRUE(SeekStream(stream.get(), FAR_OFFSET));
    EXPECT_EQ(std::fgetc(stream.get()), 'x');
    ASSERT_TRUE(TellStream(stream.get(), offset));
    EXPECT_EQ(offset, FAR_OFFSET + 1);
}

TEST_F(Stream, SizeBeyondFourGiBLeavesThePositionAlone)
{
    MakeSparse("far");
    const StreamPtr stream = Open("far", "rb");
    std::uint64_t size = 0;
    std::uint64_t offset = 1;
    EXPECT_TRUE(StreamSize(stream.get(), size));
    EXPECT_TRUE(TellStream(stream.get(), offset));
    EXPECT_EQ(size, FAR_OFFSET + 1);
    EXPECT_EQ(offset, 0u);
}

TEST_F(Stream, SizeDoesNotCountWhatIsStillBuffered)
{
    const StreamPtr stream = Open("a", "wb");
    std::uint64_t size = 7;
    std::fputs("abc", stream.get());
    EXPECT_TRUE(StreamSize(stream.get(), size));
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(SyncStream(stream.get()));
    EXPECT_TRUE(StreamSize(stream.get(), size));
    EXPECT_EQ(size, 3u);
}

TEST_F(Stream, PositionThatTheSystemCannotExpressFails)
{
    Make("a", "hello");
    const StreamPtr stream = Open("a", "rb");
    std::uint64_t next = 0;
    EXPECT_FALSE(SeekStream(stream.get(), 1ull << 63));
    EXPECT_FALSE(SeekStream(stream.get(), ~0ull));
    EXPECT_FALSE(NextStoredOffset(stream.get(), ~0ull, next));
}

TEST_F(Stream, PositionBeyondTheEndIsAllowedAndReadsNothing)
{
    Make("a", "hello");
    const StreamPtr stream = Open("a", "rb");
    EXPECT_TRUE(SeekStream(stream.get(), 100));
    EXPECT_EQ(std::fgetc(stream.get()), EOF);
}

TEST_F(Stream, NextStoredOffsetIsNeverBehindTheNextByteThatIsNotZero)
{
    MakeSparse("far");
    const StreamPtr stream = Open("far", "rb");
    std::uint64_t next = 0;
    ASSERT_TRUE(NextStoredOffset(stream.get(), 10, next));
    EXPECT_GE(next, 10u);
    EXPECT_LE(next, FAR_OFFSET);
}

TEST_F(Stream, EndOfTheFileCountsAsStored)
{
    Make("a", "hello");
    const StreamPtr stream = Open("a", "rb");
    std::uint64_t next = 0;
    ASSERT_TRUE(NextStoredOffset(stream.get(), 5, next));
    EXPECT_EQ(next, 5u);
}

TEST_F(Stream, AskingForStoredBytesLeavesThePositionAlone)
{
    MakeSparse("far");
    const StreamPtr stream = Open("far", "rb");
    std::uint64_t next = 0;
    std::uint64_t offset = 0;
    ASSERT_TRUE(SeekStream(stream.get(), 77));
    ASSERT_TRUE(NextStoredOffset(stream.get(), 0, next));
    ASSERT_TRUE(TellStream(stream.get(), offset));
    EXPECT_EQ(offset, 77u);
}

TEST_F(Stream, AdviceChangesNothing)
{
    Make("a", "hello");
    const StreamPtr stream = Open("a", "rb");
    AdviseSequential(stream.get());
    EXPECT_EQ(std::fgetc(stream.get()), 'h');
}

TEST_F(Stream, StartingToWriteBackChangesNothing)
{
    {
        const StreamPtr stream = Open("a", "wb");
        ASSERT_GE(std::fputs("hello", stream.get()), 0);
        std::fflush(stream.get());
        StartWriteback(stream.get(), 0, 5);
        StartWriteback(stream.get(), 100, 5); // there is nothing
        std::fputs(" world", stream.get());
        ASSERT_TRUE(SyncStream(stream.get()));
    }
    char acRead[20] = {};
    const StreamPtr stream = Open("a", "rb");
    EXPECT_EQ(std::fread(acRead, 1, sizeof acRead, stream.get()), 11u);
    EXPECT_STREQ(acRead, "hello world");
}

} // namespace
