// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What only exists on Linux: pipes and devices under a path, names that are not UTF-8, descriptors and their
// flags.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

using namespace BSS::HAL;

namespace {

bool Opens(const std::string& path, const char* mode)
{
    std::FILE* const stream = OpenStream(WidePath(path), mode);
    if (stream != nullptr) std::fclose(stream);
    return stream != nullptr;
}

TEST(StreamPosix, PipeIsRefusedWithoutWaiting)
{
    const Support::TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo(directory.Narrow("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(Opens(directory.Narrow("pipe"), "rb"));
    EXPECT_FALSE(Opens(directory.Narrow("pipe"), "wb"));
    EXPECT_FALSE(Opens(directory.Narrow("pipe"), "r+b"));
}

TEST(StreamPosix, DeviceIsRefused)
{
    EXPECT_FALSE(Opens("/dev/zero", "rb"));
    EXPECT_FALSE(Opens("/dev/zero", "wb"));
}

TEST(StreamPosix, LinkToARegularFileIsFollowed)
{
    const Support::TemporaryDirectory directory;
    Support::WriteAll(directory.Narrow("a"), "x");
    boost::filesystem::create_symlink("a", directory.Path() / "link");
    EXPECT_TRUE(Opens(directory.Narrow("link"), "rb"));
}

TEST(StreamPosix, NameThatIsNotUtf8IsMadeAndFoundByItsBytes)
{
    const Support::TemporaryDirectory directory;
    const std::string path = directory.Narrow("caf\xE9 \xC3\xA9 \xFF");
    EXPECT_TRUE(Opens(path, "wb"));
    struct stat info = {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_TRUE(Opens(path, "rb"));
}

TEST(StreamPosix, StreamBlocksAndIsNotInherited)
{
    const Support::TemporaryDirectory directory;
    std::FILE* const stream = OpenStream(directory.Wide("a"), "wb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(::fcntl(::fileno(stream), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(::fileno(stream), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    std::fclose(stream);
}

TEST(StreamPosix, NewFileHasTheUsualPermissions)
{
    const Support::TemporaryDirectory directory;
    const mode_t before = ::umask(022);
    EXPECT_TRUE(Opens(directory.Narrow("a"), "wb"));
    ::umask(before);
    struct stat info = {};
    ASSERT_EQ(::stat(directory.Narrow("a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0644u);
}

} // namespace
