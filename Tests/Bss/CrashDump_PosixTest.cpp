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

#include <algorithm>
#include <cctype>
#include <csignal>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
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
    /// What follows on the lines that begin so.
    std::vector<std::string> Lines(const std::string& begin) const
    {
        std::vector<std::string> rests;
        std::istringstream stream(Report());
        for (std::string line; std::getline(stream, line);)
            if (line.starts_with(begin)) rests.push_back(line.substr(begin.size()));
        return rests;
    }
    /// The lines below a heading, up to an empty one.
    std::vector<std::string> Section(const std::string& heading) const
    {
        std::vector<std::string> lines;
        std::istringstream stream(Report());
        std::string line;
        while (std::getline(stream, line) && line != heading) {
        }
        while (std::getline(stream, line) && !line.empty())
            lines.push_back(line);
        return lines;
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

// As a library does that is loaded later.
void PutAHandlerInFrontOfOurs()
{
    struct sigaction action = {};
    ::sigaction(SIGABRT, nullptr, &action);
    s_pOurs = action.sa_sigaction;
    action.sa_sigaction = &CallOurs;
    ::sigaction(SIGABRT, &action, nullptr);
}

void CrashWithAHandlerInFrontOfOneThatIsGone(const std::wstring& directory)
{
    Support::CrashQuietly();
    BSS::OS::CrashDumpC dump;
    if (dump.install({L"a", directory}) != BSS::RC_OK) return;
    PutAHandlerInFrontOfOurs();
    dump.restore();
    std::raise(SIGABRT);
}

// Ours is then behind the library's and before it.
void CrashWithAHandlerBetweenTwoOfOurs(const std::wstring& directory)
{
    const rlimit limit = {5, 5}; // seconds; what must not happen is that it never ends, whatever signal comes
    ::setrlimit(RLIMIT_CPU, &limit);
    Support::CrashQuietly();
    BSS::OS::CrashDumpC dump;
    if (dump.install({L"a", directory}) != BSS::RC_OK) return;
    PutAHandlerInFrontOfOurs();
    dump.restore();
    if (dump.install({L"a", directory}) != BSS::RC_OK) return;
    std::raise(SIGABRT);
}

TEST_F(CrashDumpPosix, HandlerThatCallsOursIsNotCalledForEver)
{
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same directory
    const std::wstring directory = m_directory.Wide("dumps");
    EXPECT_EXIT(CrashWithAHandlerBetweenTwoOfOurs(directory), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EQ(Dumps().size(), 1U);
}

TEST_F(CrashDumpPosix, HandlerThatIsStillCalledAfterItWasGivenBackWritesNothing)
{
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same directory
    const std::wstring directory = m_directory.Wide("dumps");
    EXPECT_EXIT(CrashWithAHandlerInFrontOfOneThatIsGone(directory), testing::KilledBySignal(SIGABRT), "");
    EXPECT_TRUE(Dumps().empty());
}

// In a mask 0 stands for a digit, # for a hexadecimal one.
bool Matches(const std::string& text, const std::string& mask)
{
    if (text.size() != mask.size()) return false;
    for (std::size_t n = 0; n < mask.size(); ++n) {
        const auto character = static_cast<unsigned char>(text[n]);
        const bool bMatches = mask[n] == '0'   ? std::isdigit(character) != 0
                              : mask[n] == '#' ? std::isxdigit(character) != 0
                                               : text[n] == mask[n];
        if (!bMatches) return false;
    }
    return true;
}

TEST_F(CrashDumpPosix, NameIsProgramTimeAndProcess)
{
    Run("abort");
    ASSERT_EQ(Dumps().size(), 1U);
    const std::string name = boost::filesystem::path(Dumps().front()).filename().string();
    const std::string process = Lines("process  ").front();
    EXPECT_TRUE(Matches(name, "crasher-00000000T000000Z-" + std::string(process.size(), '0') + ".crash.txt"))
        << name;
    EXPECT_NE(name.find("Z-" + process + "."), std::string::npos) << name;
}

TEST_F(CrashDumpPosix, ReportIsForTheUserAlone)
{
    Run("abort");
    ASSERT_EQ(Dumps().size(), 1U);
    struct stat info = {};
    ASSERT_EQ(::stat(Dumps().front().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
}

TEST_F(CrashDumpPosix, ReportHasRegisters)
{
    Run("abort");
    const std::vector<std::string> registers = Section("registers");
    EXPECT_GE(registers.size(), 17U);
    for (const std::string& line : registers) {
        const std::size_t space = line.find(' ');
        ASSERT_NE(space, std::string::npos) << line;
        EXPECT_TRUE(Matches(line.substr(space + 1), "0x################")) << line;
    }
}

/// The range of the program's own code, as the report's mappings tell it.
struct RangeT
{
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

RangeT ProgramOf(const std::vector<std::string>& maps)
{
    RangeT range;
    for (const std::string& line : maps) {
        if (line.find(" r-xp ") == std::string::npos || !line.ends_with("/bss_crasher")) continue;
        range.begin = std::stoull(line, nullptr, 16);
        range.end = std::stoull(line.substr(line.find('-') + 1), nullptr, 16);
    }
    return range;
}

TEST_F(CrashDumpPosix, CallsLeadIntoTheProgram)
{
    Run("abort");
    const RangeT program = ProgramOf(Section("maps"));
    ASSERT_LT(program.begin, program.end) << Report();
    const std::vector<std::string> calls = Section("calls that the stack shows, innermost first");
    EXPECT_GE(calls.size(), 3U) << Report();
    EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [&program](const std::string& line) {
        const std::uint64_t address = std::stoull(line, nullptr, 16);
        return address >= program.begin && address < program.end;
    })) << Report();
}

TEST_F(CrashDumpPosix, EachCrashLeavesAFileAndTheOldestGo)
{
    for (int n = 0; n < 7; ++n)
        Run("abort");
    EXPECT_EQ(Dumps().size(), 5U);
}

} // namespace
