// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Log files and what this system alone has: forked processes, locks of others, limits, full disks.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_AppendFile.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/DebugOutputCapture.h"
#include "Support/Environment.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"

#include <boost/filesystem/operations.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <sched.h>
#include <set>
#include <string>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace BSS::DBG;
using Support::LinesOf;
using Support::NumberOf;

namespace {

using LogFilePosix = Support::LogFolderTest;

TEST_F(LogFilePosix, EightThreadsWritingAMillionLinesLoseAndTearNone)
{
    constexpr unsigned THREADS = 8;
    constexpr unsigned LINES = 125000;
    {
        DbgLogFileConsumerC consumer("many", L"many.txt", 0);
        std::vector<std::thread> threads;
        for (unsigned who = 0; who < THREADS; ++who)
            threads.emplace_back([&consumer, who] {
                for (unsigned i = 0; i < LINES; ++i)
                    consumer.Log(LEVEL_INFO, "t%u %u", who, i * 2654435761u);
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_TRUE(consumer.flush());
    }
    // Each thread's lines are in order, so one number per thread is enough to find all of them, once, whole.
    std::vector<unsigned> next(THREADS, 0);
    std::size_t lines = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(Path("many.txt").c_str(), "r"),
                                                               &std::fclose);
    ASSERT_NE(file, nullptr);
    char line[1024];
    while (std::fgets(line, sizeof line, file.get()) != nullptr) {
        const std::string text = Support::WithoutFilling(line);
        const std::size_t begin = text.find(" INFO t");
        ASSERT_NE(begin, std::string::npos) << text;
        const unsigned who = static_cast<unsigned>(text[begin + 7] - '0');
        ASSERT_LT(who, THREADS) << text;
        ASSERT_EQ(text.substr(begin + 8), " " + std::to_string(next[who] * 2654435761u) + "\n") << text;
        ++next[who];
        ++lines;
    }
    EXPECT_EQ(lines, std::size_t{THREADS} * LINES);
}

TEST_F(LogFilePosix, ForkedChildDoesNotWriteTheLinesThatItsParentHasStillToWrite)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("parent 1\n", {1000, 0}));
    EXPECT_TRUE(file.append("parent 2\n", {1000, 0})); // waits
    const pid_t child = ::fork();
    if (child == 0) {
        const bool good = file.append("child\n", {1000, 0}) && file.flush();
        ::_exit(good ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(Bytes("a.txt"), "parent 1\nchild\nparent 2\n");
}

TEST_F(LogFilePosix, SomebodyWhoKeepsTheWriteLockForGoodDoesNotStopLogging)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    const int fd = ::open(Path("a.txt").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", {1000, 0}));
    ::close(fd);
    EXPECT_EQ(Bytes("a.txt"), "one\n");
}

TEST_F(LogFilePosix, FileThatMayNotBeReadIsStillWritten)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    Support::WriteAll(Path("a.txt"), "one\n");
    ::chmod(Path("a.txt").c_str(), 0200);
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("two\n"));
    ::chmod(Path("a.txt").c_str(), 0600);
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFilePosix, PipeInThePlaceOfTheFileIsRefusedAndDoesNotBlock)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    ASSERT_EQ(::mkfifo(Path("a.txt").c_str(), 0600), 0);
    const Support::DebugOutputCapture debug;
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.Log(LEVEL_ERROR, "lost");
    EXPECT_EQ(debug.Text(), L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (name)!\n");
}

TEST_F(LogFilePosix, PartOfALineThatTheSystemDidNotTakeIsTakenBack)
{
    // A limit on the size of files acts as a full disk does: the system takes a part of the write.
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit = {1000, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        DbgLogFileC file(L"a.txt", 0);
        bool good = true;
        for (int i = 0; i < 40; ++i)
            good = file.append(std::string(99, 'x') + "\n", {1000 + i, 0}) && good;
        const bool refused = !good && Support::ReadAll(Path("a.txt")).size() == 1000;
        const bool again = !file.append(std::string(49, 'y') + "\n", {2000, 0});
        ::_exit(refused && again ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    for (const std::string& line : LinesOf(Bytes("a.txt")))
        EXPECT_EQ(line, std::string(99, 'x'));
}

TEST_F(LogFilePosix, WhatTheSystemDidNotTakeOfManyPagesIsWrittenLater)
{
    std::string all;
    for (int i = 0; i < 400; ++i)
        all += std::string(static_cast<std::size_t>(50 + i % 100), static_cast<char>('a' + i % 26)) + "\n";
    for (const rlim_t limitBytes : {12286u, 12287u, 12288u, 12289u, 20000u}) {
        const pid_t child = ::fork();
        if (child == 0) {
            const rlimit limit = {limitBytes, RLIM_INFINITY};
            const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            DbgLogFileC file(L"a.txt", 0);
            const bool refused = !file.append(all, {1000, 0});
            const std::string part = Support::ReadAll(Path("a.txt"));
            const bool whole = part.size() <= limitBytes && part.size() + 200 > limitBytes && part.back() == '\n';
            ::setrlimit(RLIMIT_FSIZE, &none);
            ::_exit(refused && whole && file.flush() ? 0 : 1);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << limitBytes;
        EXPECT_TRUE(Support::WithoutFilling(Bytes("a.txt")) == all) << limitBytes;
        TakeAway();
    }
}

TEST_F(LogFilePosix, LimitOnTheSizeOfFilesThatIsSetWhileRunningEndsNoProcess)
{
    const pid_t child = ::fork();
    if (child == 0) {
        DbgLogFileC file(L"a.txt", 0);
        const bool before = file.append("before\n", {1000, 0});
        const rlimit limit = {10, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool refused = !file.append("refused\n", {1001, 0}) && !file.append("too\n", {1002, 0});
        sigset_t pending;
        ::sigpending(&pending);
        ::_exit(before && refused && ::sigismember(&pending, SIGXFSZ) == 0 ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Bytes("a.txt"), "before\n");
}

// Somebody who closes what is not theirs.
void CloseBehindItsOwner(const std::string& path)
{
    for (const auto& entry : boost::filesystem::directory_iterator("/proc/self/fd")) {
        boost::system::error_code gone;
        if (boost::filesystem::read_symlink(entry.path(), gone) == boost::filesystem::canonical(path))
            ::close(std::stoi(entry.path().filename().string()));
    }
}

constexpr wchar_t FAILURE[] = L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (name)!\n";

TEST_F(LogFilePosix, CloseThatTheSystemRefusesIsToldWhenTheConsumerEnds)
{
    const Support::DebugOutputCapture debug;
    {
        DbgLogFileConsumerC consumer("name", L"a.txt");
        consumer.Log(LEVEL_ERROR, "one");
        CloseBehindItsOwner(Path("a.txt"));
    }
    EXPECT_EQ(debug.Text(), FAILURE);
}

TEST_F(LogFilePosix, CloseThatTheSystemRefusesIsToldWithTheNextLine)
{
    const Support::DebugOutputCapture debug;
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.setPrefixKind(PrefixKind::None);
    consumer.Log(LEVEL_ERROR, "one");
    CloseBehindItsOwner(Path("a.txt"));
    BSS::OS::SetLogDirectory(m_directory.Wide("other"));
    consumer.Log(LEVEL_ERROR, "two");
    EXPECT_EQ(debug.Text(), FAILURE);
    consumer.Log(LEVEL_ERROR, "three");
    EXPECT_EQ(debug.Text(), FAILURE);
    EXPECT_EQ(Support::ReadAll(m_directory.Narrow("other/a.txt")), "two\nthree\n");
}

TEST_F(LogFilePosix, CloseThatTheSystemRefusesIsToldByAFlushThatHasNothingToWrite)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", {1000, 0}));
    CloseBehindItsOwner(Path("a.txt"));
    BSS::OS::SetLogDirectory(m_directory.Wide("other"));
    EXPECT_FALSE(file.flush());
    EXPECT_TRUE(file.flush()) << "told once";
}

TEST_F(LogFilePosix, LinesThatCannotBeWrittenWhenTheConsumerEndsAreToldOf)
{
    const Support::DebugOutputCapture debug;
    {
        DbgLogFileConsumerC consumer("name", L"a.txt");
        consumer.Log(LEVEL_ERROR, "one");
        consumer.Log(LEVEL_INFO, "waits");
        TakeAway();
        Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    }
    EXPECT_EQ(debug.Text(), FAILURE);
}

// Opens a file and expects it to stand where another one stood that was closed.
class ComesInPlaceC
{
public:
    explicit ComesInPlaceC(const std::string& path, const std::string& text) : m_path(path)
    {
        Support::WriteAll(path, text);
        m_fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    }
    ~ComesInPlaceC() { ::close(m_fd); }
    ComesInPlaceC(const ComesInPlaceC&) = delete;
    ComesInPlaceC& operator=(const ComesInPlaceC&) = delete;

    int Get() const { return m_fd; }
    bool IsOpen() const { return ::fcntl(m_fd, F_GETFD) != -1; }
    std::string Text() const { return Support::ReadAll(m_path); }

private:
    std::string m_path;
    int m_fd;
};

TEST_F(LogFilePosix, FileThatStandsWhereTheLogStoodIsNeitherCutOffNorClosed)
{
    BSS::HAL::WallTime now = BSS::HAL::WallTimeNow();
    DbgLogFileC file(L"a.txt", 0);
    ASSERT_TRUE(file.append("one\n", now) && file.handOver());
    CloseBehindItsOwner(Path("a.txt"));
    const std::string text(1000, 'x');
    const ComesInPlaceC other(m_directory.Narrow("other.bin"), text);
    now.seconds += 10;                       // when the file is looked at
    EXPECT_FALSE(file.append("two\n", now)); // the log's own was not closed by us
    EXPECT_TRUE(file.handOver());
    EXPECT_EQ(other.Text(), text);
    EXPECT_TRUE(file.finish());
    EXPECT_TRUE(other.IsOpen());
    EXPECT_EQ(Support::ReadAll(Path("a.txt")), "one\ntwo\n");
}

TEST_F(LogFilePosix, FileIsClosedOnceOnly)
{
    const std::string path = m_directory.Narrow("b.txt");
    auto file = BSS::HAL::AppendFileC::Open(BSS::HAL::WidePath(path));
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->Close());
    const ComesInPlaceC other(m_directory.Narrow("other.bin"), "text");
    file.reset();
    EXPECT_TRUE(other.IsOpen());
}

TEST_F(LogFilePosix, LastLinesFollowWholeLinesHoweverLongTheyWaited)
{
    BSS::HAL::WallTime then = BSS::HAL::WallTimeNow();
    then.seconds -= 3600;
    DbgLogFileC file(L"a.txt", 0);
    ASSERT_TRUE(file.append("one\n", then) && file.handOver());
    ASSERT_TRUE(file.append("waits\n", then));
    std::ofstream(Path("a.txt"), std::ios::app) << "the beginning of a line";
    EXPECT_TRUE(file.finish());
    EXPECT_EQ(Support::ReadAll(Path("a.txt")), "one\nwaits\n");
}

TEST_F(LogFilePosix, LostLinesAreToldOfAtTheEndWhenNoOtherLineFollows)
{
    TakeAway();
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    DbgLogFileC file(L"a.txt", 0);
    const std::string line(1023, 'x');
    for (int i = 0; i < 300; ++i) // more than wait in memory
        static_cast<void>(file.append(line + "\n"));
    boost::filesystem::remove(m_directory.Narrow("log"));
    EXPECT_TRUE(file.finish());
    const std::vector<std::string> lines = LinesOf(Support::ReadAll(Path("a.txt")));
    ASSERT_FALSE(lines.empty());
    const std::string told =
        "(" + std::to_string(300 - (lines.size() - 1)) + " lines could not be written and are lost)";
    EXPECT_EQ(lines.back(), told);
}

// Cancels the thread that writes, in the middle of that.
class CancellingC final : public DbgLogConsumerC
{
public:
    CancellingC() : DbgLogConsumerC("c", PrefixKind::None) {}
    std::string text;

protected:
    bool write(std::string_view lines) override
    {
        text += lines.front();
        if (text.size() == 1) ::pthread_cancel(::pthread_self());
        text += lines.substr(1);
        return true;
    }
};

struct CancelledLogT
{
    DbgLogConsumerC& rConsumer;
    bool bReturned = false;
};

void* LogWhereCancellationTakesEffectAtOnce(void* log)
{
    int before = 0;
    ::pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, &before);
    static_cast<CancelledLogT*>(log)->rConsumer.Log(LEVEL_INFO, "one");
    static_cast<CancelledLogT*>(log)->bReturned = true;
    return nullptr;
}

// Whether the thread ended in the call. What pthread_join tells does not: this C library forgets to say that
// a thread was cancelled when it ends because it lets itself be cancelled again.
bool EndsInTheCall(DbgLogConsumerC& consumer)
{
    CancelledLogT log{consumer};
    pthread_t thread = {};
    if (::pthread_create(&thread, nullptr, &LogWhereCancellationTakesEffectAtOnce, &log) != 0) return false;
    return ::pthread_join(thread, nullptr) == 0 && !log.bReturned;
}

// Cannot write.
class RefusingC final : public DbgLogConsumerC
{
public:
    RefusingC() : DbgLogConsumerC("c", PrefixKind::None) {}

protected:
    bool write(std::string_view) override { return false; }
};

TEST(LogCancellation, ThatTakesEffectAtAnyTimeWaitsUntilAFailureIsToldAndLeavesNoLockBehind)
{
    static unsigned s_told = 0;
    s_told = 0;
    BSS::HAL::SetDebugOutputSink(
        [](const wchar_t*, void*) {
            if (++s_told == 1) ::pthread_cancel(::pthread_self());
        },
        nullptr);
    RefusingC consumer;
    EXPECT_TRUE(EndsInTheCall(consumer));
    consumer.Log(LEVEL_INFO, "two");
    EXPECT_EQ(s_told, 2u);
    BSS::HAL::SetDebugOutputSink(nullptr, nullptr);
}

TEST(LogCancellation, ThatTakesEffectAtAnyTimeWaitsForTheLineAndLeavesNoLockBehind)
{
    CancellingC consumer;
    EXPECT_TRUE(EndsInTheCall(consumer));
    ASSERT_EQ(consumer.text, "one\n");
    consumer.Log(LEVEL_INFO, "two");
    EXPECT_EQ(consumer.text, "one\ntwo\n");
}

void* CancelAndLog(void* consumer)
{
    auto* const log = static_cast<DbgLogConsumerC*>(consumer);
    ::pthread_cancel(::pthread_self());
    log->Log(LEVEL_ERROR, "one");
    log->Log(LEVEL_ERROR, L"two");
    log->flush();
    log->Log(LEVEL_ERROR, "three");
    ::pthread_testcancel();
    return nullptr;
}

TEST_F(LogFilePosix, ThreadThatIsCancelledLogsToTheEndAndIsCancelledThen)
{
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.setPrefixKind(PrefixKind::None);
    pthread_t thread = {};
    ASSERT_EQ(::pthread_create(&thread, nullptr, &CancelAndLog, &consumer), 0);
    void* result = nullptr;
    ASSERT_EQ(::pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\nthree\n");
}

// Windows does not let a directory go in which a file is open.
TEST_F(LogFilePosix, DirectoryThatIsTakenAwayIsMadeAnewAndNothingIsLost)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", {1000, 0}));
    TakeAway();
    EXPECT_TRUE(file.append("two\n", {1001, 0}));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

// Lines 0 to `count` of "d" in their order; where some are missing, a line says how many; "room again" and
// "and again" at the end.
bool EveryLineIsThereOrCounted(const std::vector<std::string>& lines, long count)
{
    long next = 0;
    long lost = 0;
    std::string end;
    for (const std::string& line : lines) {
        const long number = NumberOf(line, "d");
        const std::size_t error = line.find(" ERROR ");
        if (number >= 0) {
            if (number != next + lost) return false;
            ++next;
        } else if (error != std::string::npos) {
            end += line.substr(error + 7) + ";";
        } else {
            const long told = line.front() == '(' ? std::atol(line.c_str() + 1) : 0;
            if (told <= 0 || line.find(" lines could not be written and are lost)") == std::string::npos)
                return false;
            lost += told;
        }
    }
    return lost > 0 && next + lost == count && end == "room again;and again;";
}

// Runs in a child with a file system of its own, as big as a few lines. 0: as it should be; 77: not permitted
// here.
int LogToAFullDisk(const std::string& folder)
{
    const uid_t user = ::geteuid();
    const bool own =
        ::unshare(CLONE_NEWNS) == 0 || (user != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0);
    if (!own || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return 77;
    boost::filesystem::create_directories(folder);
    if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=32k") != 0) return 77;
    const Support::DebugOutputCapture debug;
    DbgLogFileConsumerC consumer("disk", L"a.txt", 0);
    consumer.setFlushLevel(LEVEL_INFO);
    constexpr unsigned LINES = 6000; // more than wait in memory
    for (unsigned i = 0; i < LINES; ++i)
        consumer.Log(LEVEL_INFO, "%s", Support::CheckedLine("d", i));
    const bool told = debug.Text().find(L"ERROR while writing to log (disk)!") != std::wstring::npos;
    const std::string full = Support::ReadAll(folder + "/a.txt");
    for (const std::string& line : LinesOf(full))
        if (line.find(" some words of a usual length ") == std::string::npos) return 2;
    if (!told || full.empty() || full.back() != '\n') return 3;
    // Somebody makes room.
    if (::mount("tmpfs", folder.c_str(), "tmpfs", MS_REMOUNT, "size=1m") != 0) return 4;
    consumer.Log(LEVEL_ERROR, "room again");
    consumer.Log(LEVEL_ERROR, "and again");
    const std::string after = Support::ReadAll(folder + "/a.txt");
    if (after.compare(0, full.size(), full) != 0 || after.back() != '\n') return 5;
    if (EveryLineIsThereOrCounted(LinesOf(after), LINES)) return 0;
    for (const std::string& line : LinesOf(after))
        if (NumberOf(line, "d") < 0) std::fprintf(stderr, "%s\n", line.c_str());
    return 6;
}

TEST_F(LogFilePosix, FullDiskIsSurvivedAndLeavesWholeLines)
{
    const pid_t child = ::fork();
    if (child == 0) ::_exit(LogToAFullDisk(m_directory.Narrow("log")));
    int status = -1;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77) {
        if (Support::GetEnvironment("CI") == "true")
            FAIL() << "a file system of one's own is not permitted here";
        GTEST_SKIP() << "a file system of one's own is not permitted here";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
