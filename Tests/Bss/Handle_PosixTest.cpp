// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Closing descriptors with a look at the answer.
#include "Bss/Bss_Os/BSS_OS_Handle.h"
#include "Support/ReportCapture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using BSS::OS::HandleC;

namespace {

constexpr char REFUSED[] = "!\"Failed closing handle!\"";

TEST(HandlePosix, CloseClosesOnceAndForgetsTheHandle)
{
    const Support::ReportCapture reports;
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    HandleC handle(fd);
    EXPECT_EQ(handle.Close(), BSS::RC_OK);
    EXPECT_EQ(::fcntl(fd, F_GETFD), -1);
    EXPECT_EQ(handle.Close(), BSS::RC_OK);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(HandlePosix, CloseThatTheSystemRefusesIsReported)
{
    const Support::ReportCapture reports;
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    HandleC handle(fd);
    ::close(fd);
    EXPECT_EQ(handle.Close(), 0x0200001Au);
    EXPECT_EQ(reports.Count(REFUSED), 1u);
}

TEST(HandlePosix, EndOfTheObjectClosesToo)
{
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    {
        const HandleC handle(fd);
    }
    EXPECT_EQ(::fcntl(fd, F_GETFD), -1);
}

} // namespace
