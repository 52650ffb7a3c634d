// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log file whose writes the system interrupts, carries out in part, or never ends, because it kills the
// process: the system calls of this program go through the test.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"
#include "Support/SystemCall_Posix.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using BSS::DBG::DbgLogFileC;

namespace {

constexpr std::size_t NO_LIMIT = std::numeric_limits<std::size_t>::max();
constexpr long PAGE = 4096;

// What happens to the writes of a log file.
struct StepsT
{
    int interruptions = 0;        ///< so many of them find a signal waiting
    bool singleOnly = false;      ///< the call that gathers pieces is forbidden
    std::size_t bytes = NO_LIMIT; ///< that one call takes at most
    long fullAt = -1;             ///< the disk is full when the file has so many bytes
    bool cutsNothing = false;     ///< the file cannot be cut off
    long endAt = -1;              ///< the process ends when the file has so many bytes
    int writes = 0;
};
StepsT s_steps;

// The first so many bytes of the parts.
std::vector<struct iovec> Beginning(const struct iovec* parts, long count, std::size_t bytes)
{
    std::vector<struct iovec> beginning;
    for (long i = 0; i < count && bytes > 0; ++i) {
        beginning.push_back({parts[i].iov_base, std::min(parts[i].iov_len, bytes)});
        bytes -= beginning.back().iov_len;
    }
    return beginning;
}

long Write(int fd, const struct iovec* parts, long count, long offset)
{
    ++s_steps.writes;
    if (s_steps.interruptions > 0) {
        --s_steps.interruptions;
        errno = EINTR;
        return -1;
    }
    if (s_steps.fullAt >= 0 && offset >= s_steps.fullAt) {
        errno = ENOSPC;
        return -1;
    }
    if (s_steps.fullAt >= 0) s_steps.bytes = static_cast<std::size_t>(s_steps.fullAt - offset);
    const bool ends = s_steps.endAt >= offset;
    const std::size_t most = ends ? static_cast<std::size_t>(s_steps.endAt - offset) : s_steps.bytes;
    const std::vector<struct iovec> taken = Beginning(parts, count, most);
    const long written = __real_syscall(SYS_pwritev, fd, taken.data(), taken.size(), offset, 0L);
    if (ends && offset + written == s_steps.endAt) ::_exit(9);
    return written;
}

} // namespace

extern "C" long __wrap_syscall(long number, ...)
{
    std::va_list arguments;
    va_start(arguments, number);
    const Support::CallValuesT values = Support::CallValuesOf(arguments);
    va_end(arguments);
    const int fd = static_cast<int>(values[0]);
    if (number == SYS_pwritev && s_steps.singleOnly) {
        errno = EPERM;
        return -1;
    }
    if (number == SYS_pwritev)
        return Write(fd, reinterpret_cast<const struct iovec*>(values[1]), values[2], values[3]);
    if (number == SYS_pwrite64) {
        const struct iovec part = {reinterpret_cast<void*>(values[1]), static_cast<std::size_t>(values[2])};
        return Write(fd, &part, 1, values[3]);
    }
    return Support::MakeSystemCall(number, values);
}

extern "C" int __real_ftruncate(int fd, off_t length);

extern "C" int __wrap_ftruncate(int fd, off_t length)
{
    if (!s_steps.cutsNothing) return __real_ftruncate(fd, length);
    errno = EIO;
    return -1;
}

namespace {

class LogWriteSteps : public Support::LogFolderTest
{
protected:
    LogWriteSteps() { s_steps = {}; }
    ~LogWriteSteps() override { s_steps = {}; }
};

// Many pages of lines of all usual lengths.
std::string ManyLines()
{
    std::string lines;
    for (int i = 0; i < 2000; ++i)
        lines +=
            BSS::UTI::Format("line %d", i) + std::string(static_cast<std::size_t>(i * 7 % 200), 'x') + "\n";
    return lines;
}

TEST_F(LogWriteSteps, InterruptedWritesAreRepeated)
{
    for (const std::string& lines : {std::string("one\n"), ManyLines()}) {
        DbgLogFileC file(L"a.txt", 0);
        s_steps = {.interruptions = 3};
        EXPECT_TRUE(file.append(lines, {1000, 0}) && file.flush());
        EXPECT_GE(s_steps.writes, 4);
        EXPECT_TRUE(Support::WithoutFilling(Bytes("a.txt")) == lines);
        EXPECT_TRUE(file.finish());
        TakeAway();
    }
}

TEST_F(LogWriteSteps, WritesThatTakeAPartOnlyAreContinuedWhereTheyEnded)
{
    const std::string lines = ManyLines();
    for (const std::size_t bytes : {1u, 7u, 4095u, 4096u, 4097u, 5000u, 100000u}) {
        s_steps = {.bytes = bytes};
        {
            DbgLogFileC file(L"a.txt", 0);
            EXPECT_TRUE(file.append(lines, {1000, 0}) && file.finish());
        }
        const std::string text = Bytes("a.txt");
        EXPECT_TRUE(Support::WithoutFilling(text) == lines) << bytes;
        EXPECT_GE(s_steps.writes, static_cast<int>(text.size() / bytes)) << bytes;
        EXPECT_TRUE(Support::PagesEndWithLines(text)) << bytes;
        TakeAway();
    }
}

TEST_F(LogWriteSteps, WhereNoPiecesMayBeGatheredTheyAreWrittenOneByOne)
{
    s_steps = {.singleOnly = true};
    const std::string lines = ManyLines();
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append(lines, {1000, 0}) && file.flush());
    EXPECT_TRUE(Support::WithoutFilling(Bytes("a.txt")) == lines);
}

TEST_F(LogWriteSteps, PartOfALineThatCannotBeTakenBackAtOnceIsTakenBackBeforeTheNext)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("first\n", {1000, 0}));
    s_steps = {.fullAt = 9, .cutsNothing = true};
    EXPECT_TRUE(file.append("second\n", {1000, 0}));
    EXPECT_FALSE(file.handOver());
    EXPECT_EQ(Bytes("a.txt"), "first\nsec");
    s_steps = {};
    EXPECT_TRUE(file.handOver()); // in the same moment, in which the file is usually not looked at
    EXPECT_EQ(Bytes("a.txt"), "first\nsecond\n");
}

TEST_F(LogWriteSteps, AFullBufferIsWrittenInOneCall)
{
    const std::string line = std::string(2060, 'x') + "\n"; // a page for each, and so two pieces
    std::string lines;
    while (lines.size() + line.size() <= DbgLogFileC::BUFFER_BYTES)
        lines += line;
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("first\n", {1000, 0}));
    s_steps = {};
    EXPECT_TRUE(file.append(lines, {1000, 0}) && file.handOver());
    EXPECT_EQ(s_steps.writes, 1);
}

TEST_F(LogWriteSteps, LinesThatAreHandedOverOneByOneEndWithThePages)
{
    const std::string lines = ManyLines();
    DbgLogFileC file(L"a.txt", 0);
    for (const std::string& line : Support::LinesOf(lines))
        EXPECT_TRUE(file.append(line + "\n", {1000, 0}) && file.handOver());
    const std::string text = Bytes("a.txt");
    EXPECT_TRUE(Support::PagesEndWithLines(text));
    EXPECT_TRUE(Support::WithoutFilling(text) == lines);
    EXPECT_GE(s_steps.writes, 2000);
}

// Wherever the system may stop a write.
TEST_F(LogWriteSteps, ProcessThatIsKilledBetweenTwoPagesOfTheFileLeavesWholeLines)
{
    const std::string lines = ManyLines();
    for (long pages = 1; pages <= 40; ++pages) {
        const pid_t child = ::fork();
        if (child == 0) {
            s_steps = {.endAt = pages * PAGE};
            DbgLogFileC file(L"a.txt", 0);
            static_cast<void>(file.append(lines, {1000, 0}) && file.finish());
            ::_exit(0);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        ASSERT_EQ(WEXITSTATUS(status), 9) << pages;
        const std::string left = Bytes("a.txt");
        ASSERT_EQ(left.size(), static_cast<std::size_t>(pages * PAGE));
        const std::string text = Support::WithoutFilling(left);
        EXPECT_EQ(text.back(), '\n') << pages;
        EXPECT_TRUE(lines.compare(0, text.size(), text) == 0) << pages;
        TakeAway();
    }
}

} // namespace
