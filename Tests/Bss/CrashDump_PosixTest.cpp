// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a crash leaves: a report, and the end that the process would have had without one.
#include "Bss/Bss_Os/BSS_OS_CrashDump.h"
#include "Support/ChildProcess.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/QuietCrash.h"
#include "Support/TemporaryDirectory.h"

#include <csignal>
#include <gtest/gtest.h>
#include <regex>
#include <sys/stat.h>

namespace {

class CrashDumpPosix : public testing::Test
{
protected:
    /// How the process has ended: minus its signal, or its exit code.
    int Run(const std::string& how, const std::string& earlier = "") const
    {
        std::vector<std::string> command = {BSS_CRASHER, m_directory.Narrow("dumps"), how};
        if (!earlier.empty()) command.push_back(earlier);
        return Support::ChildProcess(command).Wait();
    }
    std::vector<std::string> Dumps() const
    {
        std::vector<std::string> dumps;
        for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "dumps"))
            dumps.push_back(entry.path().string());
        return dumps;
    }
    /// The one report; empty when there is none, or more than one.
    std::string Report() const
    {
        const std::vector<std::string> dumps = Dumps();
        return dumps.size() == 1 ? Support::ReadAll(dumps.front()) : "";
    }
    bool Says(const std::string& text) const { return Report().find(text) != std::string::npos; }

private:
    // Faults belong to us in the child, not to a sanitizer.
    const Support::ScopedEnvironment m_asan{"ASAN_OPTIONS", "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:"
                                                            "handle_sigill=0:use_sigaltstack=0"};
    const Support::ScopedEnvironment m_tsan{"TSAN_OPTIONS", "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:"
                                                            "handle_sigill=0:use_sigaltstack=0"};

protected:
    const Support::TemporaryDirectory m_directory;
};

struct EndT
{
    std::string how;
    int signal;
    std::string name;
};

class CrashDumpPosixEnd : public CrashDumpPosix, public testing::WithParamInterface<EndT>
{};

TEST_P(CrashDumpPosixEnd, ProcessEndsByItsSignalAndTheReportNamesIt)
{
    EXPECT_EQ(Run(GetParam().how), -GetParam().signal);
    EXPECT_TRUE(Says("\nsignal   " + std::to_string(GetParam().signal) + " " + GetParam().name + "\n"))
        << Report();
    EXPECT_TRUE(Report().ends_with("\nend of report\n"));
}

INSTANTIATE_TEST_SUITE_P(
    All, CrashDumpPosixEnd,
    testing::Values(EndT{"access", SIGSEGV, "SIGSEGV"}, EndT{"abort", SIGABRT, "SIGABRT"},
                    EndT{"terminate", SIGABRT, "SIGABRT"}, EndT{"overflow", SIGSEGV, "SIGSEGV"},
                    EndT{"threads", SIGSEGV, "SIGSEGV"}, EndT{std::to_string(SIGBUS), SIGBUS, "SIGBUS"},
                    EndT{std::to_string(SIGILL), SIGILL, "SIGILL"},
                    EndT{std::to_string(SIGFPE), SIGFPE, "SIGFPE"},
                    EndT{std::to_string(SIGSYS), SIGSYS, "SIGSYS"}),
    [](const auto& one) {
        const bool bNumber = one.param.how[0] <= '9';
        return bNumber ? one.param.name : one.param.how;
    });

TEST_F(CrashDumpPosix, NoCrashLeavesNoFile)
{
    EXPECT_EQ(Run("none"), 0);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDumpPosix, ProcessThatGaveTheHandlerBackLeavesNoFile)
{
    EXPECT_EQ(Run("restored"), -SIGSEGV);
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDumpPosix, HandlerFromBeforeIsCalledAfterTheReport)
{
    EXPECT_EQ(Run("access", std::to_string(SIGSEGV)), 42);
    EXPECT_TRUE(Says("SIGSEGV"));
}

TEST_F(CrashDumpPosix, HandlerFromBeforeIsCalledForASignalThatWasSent)
{
    EXPECT_EQ(Run(std::to_string(SIGFPE), std::to_string(SIGFPE)), 42);
    EXPECT_TRUE(Says("SIGFPE"));
}

void (*s_pOurs)(int, siginfo_t*, void*) = nullptr;

void CallOurs(int number, siginfo_t* pInfo, void* pContext)
{
    s_pOurs(number, pInfo, pContext);
}

// As a library does that is loaded later and takes its place in front of our handler.
void CrashWithAHandlerInFrontOfOneThatIsGone(const std::wstring& directory)
{
    Support::CrashQuietly();
    BSS::OS::CrashDumpC dump;
    if (dump.install({L"a", directory}) != BSS::RC_OK) return;
    struct sigaction action = {};
    ::sigaction(SIGABRT, nullptr, &action);
    s_pOurs = action.sa_sigaction;
    action.sa_sigaction = &CallOurs;
    ::sigaction(SIGABRT, &action, nullptr);
    dump.restore();
    std::raise(SIGABRT);
}

TEST_F(CrashDumpPosix, HandlerThatIsStillCalledAfterItWasGivenBackWritesNothing)
{
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same directory
    const std::wstring directory = m_directory.Wide("dumps");
    EXPECT_EXIT(CrashWithAHandlerInFrontOfOneThatIsGone(directory), testing::KilledBySignal(SIGABRT), "");
    EXPECT_TRUE(Dumps().empty());
}

TEST_F(CrashDumpPosix, NameIsProgramTimeAndProcess)
{
    Run("abort");
    ASSERT_EQ(Dumps().size(), 1U);
    const std::string path = Dumps().front();
    EXPECT_TRUE(std::regex_search(path, std::regex(R"(/crasher-20\d{6}T\d{6}Z-\d+\.crash\.txt$)"))) << path;
}

TEST_F(CrashDumpPosix, ReportIsForTheUserAlone)
{
    Run("abort");
    ASSERT_EQ(Dumps().size(), 1U);
    struct stat info = {};
    ASSERT_EQ(::stat(Dumps().front().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
}

TEST_F(CrashDumpPosix, ReportHasRegistersCallsAndMappings)
{
    Run("abort");
    const std::string report = Report();
    EXPECT_TRUE(std::regex_search(report, std::regex("\nregisters\n[a-z0-9]+ 0x[0-9a-f]{16}\n"))) << report;
    EXPECT_TRUE(std::regex_search(report, std::regex("innermost first\n(0x[0-9a-f]{16}\n){3}"))) << report;
    EXPECT_NE(report.find("bss_crasher\n", report.find("\nmaps\n")), std::string::npos) << report;
}

// The range of the program's own code, as the report's mappings tell it.
bool IsInProgram(const std::string& report, std::uint64_t address)
{
    const std::regex line("\n([0-9a-f]+)-([0-9a-f]+) r-xp [^\n]*bss_crasher\n");
    std::smatch found;
    if (!std::regex_search(report, found, line)) return false;
    return address >= std::stoull(found[1], nullptr, 16) && address < std::stoull(found[2], nullptr, 16);
}

TEST_F(CrashDumpPosix, CallsLeadIntoTheProgram)
{
    Run("abort");
    const std::string report = Report();
    const std::size_t begin = report.find("innermost first\n");
    ASSERT_NE(begin, std::string::npos);
    const std::string calls = report.substr(begin, report.find("\n\n", begin) - begin);
    bool bFound = false;
    const std::regex address("0x([0-9a-f]{16})");
    for (std::sregex_iterator one(calls.begin(), calls.end(), address), end; one != end; ++one)
        bFound = bFound || IsInProgram(report, std::stoull((*one)[1], nullptr, 16));
    EXPECT_TRUE(bFound) << report;
}

TEST_F(CrashDumpPosix, EachCrashLeavesAFileAndTheOldestGo)
{
    for (int n = 0; n < 7; ++n)
        Run("abort");
    EXPECT_EQ(Dumps().size(), 5U);
}

} // namespace
