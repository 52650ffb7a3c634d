// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The log file and the consumer that writes it.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileName.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Support/DebugOutputCapture.h"
#include "Support/LogFolderTest.h"
#include "Support/LogLines.h"
#include "Support/ReportCapture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace BSS::DBG;
using Support::LinesOf;

namespace {

constexpr wchar_t FAILURE[] = L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (name)!\n";

class LogFile : public Support::LogFolderTest
{
protected:
    // A moment so long after the last one that lines do not wait.
    BSS::HAL::WallTime Later() { return {m_second += 1, 0}; }

    // Lines that were logged in one moment.
    BSS::HAL::WallTime SameMoment() const { return {m_second, 0}; }

    std::int64_t m_second = 1000;
};

TEST_F(LogFile, NothingIsMadeBeforeTheFirstLine)
{
    const DbgLogFileConsumerC consumer("c", L"c.txt");
    EXPECT_FALSE(boost::filesystem::exists(m_directory.Path() / "log"));
}

TEST_F(LogFile, LinesAreAppended)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n"));
    EXPECT_TRUE(DbgLogFileC(L"a.txt", 0).append("two\n"));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, LineAfterAPauseIsInTheFileAtOnce)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "one\n");
    EXPECT_TRUE(file.append("two\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, LinesOfTheSameMomentWaitUntilTheyAreHandedOver)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    EXPECT_TRUE(file.append("two\n", SameMoment()));
    EXPECT_EQ(Bytes("a.txt"), "one\n");
    EXPECT_TRUE(file.handOver());
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, ClockThatIsSetBackMakesNothingWait)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", {1000, 0}));
    EXPECT_TRUE(file.append("two\n", {10, 0}));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, EndOfTheObjectHandsOver)
{
    {
        DbgLogFileC file(L"a.txt", 0);
        EXPECT_TRUE(file.append("one\n", Later()));
        EXPECT_TRUE(file.append("two\n", SameMoment()));
    }
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, MoreThanTheBufferHoldsIsWrittenWhole)
{
    DbgLogFileC file(L"a.txt", 0);
    std::string all;
    for (int i = 0; i < 50000; ++i)
        all += BSS::UTI::Format("line %d\n", i);
    EXPECT_TRUE(file.append(all));
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(Support::WithoutFilling(Bytes("a.txt")) == all);
}

TEST_F(LogFile, LimitIsKeptAlsoByWhatLinesAreFilledUpWith)
{
    constexpr std::uint64_t LIMIT = 10000;
    std::string all;
    for (int i = 1000; i < 2000; ++i)
        all += BSS::UTI::Format("line %d", i) + std::string(static_cast<std::size_t>(i % 300), 'x') + "\n";
    for (const bool atOnce : {true, false}) {
        DbgLogFileC file(L"a.txt", LIMIT, 100);
        const std::vector<std::string> parts = atOnce ? std::vector{all} : LinesOf(all);
        for (const std::string& part : parts)
            EXPECT_TRUE(file.append(atOnce ? part : part + "\n", Later()));
        EXPECT_TRUE(file.flush());
        std::string found;
        for (int i = 100; i > 0; --i) {
            const std::string part = Bytes(BSS::UTI::Format("a.%d.txt", i));
            EXPECT_LE(part.size(), LIMIT);
            EXPECT_TRUE(Support::PagesEndWithLines(part)) << i;
            found += part;
        }
        EXPECT_LE(Bytes("a.txt").size(), LIMIT);
        EXPECT_TRUE(Support::WithoutFilling(found + Bytes("a.txt")) == all) << atOnce;
        EXPECT_TRUE(file.finish()); // Windows does not let a directory go in which a file is open
        TakeAway();
    }
}

TEST_F(LogFile, FullFileBecomesTheOlderOne)
{
    DbgLogFileC file(L"a.txt", 10);
    EXPECT_TRUE(file.append("12345\n", Later()));
    EXPECT_TRUE(file.append("678\n", Later()));
    EXPECT_FALSE(Exists("a.1.txt"));
    EXPECT_TRUE(file.append("next\n", Later()));
    EXPECT_EQ(Bytes("a.1.txt"), "12345\n678\n");
    EXPECT_EQ(Bytes("a.txt"), "next\n");
}

TEST_F(LogFile, OlderFilesAreNumberedAndTheLastOneGoes)
{
    DbgLogFileC file(L"a", 4, 2);
    for (const char* line : {"1\n", "22\n", "333\n", "444\n"})
        EXPECT_TRUE(file.append(line, Later()));
    EXPECT_EQ(Bytes("a"), "444\n");
    EXPECT_EQ(Bytes("a.1"), "333\n");
    EXPECT_EQ(Bytes("a.2"), "22\n");
    EXPECT_FALSE(Exists("a.3"));
}

TEST_F(LogFile, NoOlderFilesAreKeptWhenNoneAreWanted)
{
    DbgLogFileC file(L"a.txt", 4, 0);
    EXPECT_TRUE(file.append("111\n", Later()));
    EXPECT_TRUE(file.append("222\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "222\n");
    EXPECT_FALSE(Exists("a.1.txt"));
}

TEST_F(LogFile, SmallerCountRemovesWhatIsBeyondIt)
{
    DbgLogFileC file(L"a.txt", 4, 3);
    for (const char* line : {"111\n", "222\n", "333\n", "444\n"})
        EXPECT_TRUE(file.append(line, Later()));
    EXPECT_TRUE(Exists("a.3.txt"));
    file.setOlderFiles(1);
    EXPECT_TRUE(file.append("555\n", Later()));
    EXPECT_EQ(Bytes("a.1.txt"), "444\n");
    EXPECT_FALSE(Exists("a.2.txt"));
    EXPECT_FALSE(Exists("a.3.txt"));
}

TEST_F(LogFile, ManyLinesAtOnceFillFilesToTheLimitAndNotBeyond)
{
    DbgLogFileC file(L"a.txt", 100, 400);
    std::string all;
    for (int i = 1000; i < 2000; ++i)
        all += BSS::UTI::Format("line %d\n", i);
    EXPECT_TRUE(file.append(all));
    EXPECT_TRUE(file.flush());
    std::string found;
    for (int i = 100; i > 0; --i) {
        const std::string part = Bytes(BSS::UTI::Format("a.%d.txt", i));
        EXPECT_LE(part.size(), 100u);
        found += part;
    }
    EXPECT_EQ(found + Bytes("a.txt"), all);
}

TEST_F(LogFile, LineLongerThanTheLimitIsCutToItAndMarked)
{
    DbgLogFileC file(L"a.txt", 12);
    EXPECT_TRUE(file.append("1234567890123\n"));
    EXPECT_EQ(Bytes("a.txt"), "12345 (cut)\n");
}

TEST_F(LogFile, LineIsNotCutInsideACharacter)
{
    DbgLogFileC file(L"a.txt", 12);
    EXPECT_TRUE(file.append("1234\u00E9\u00E9\u00E9\u00E9\n"));
    EXPECT_EQ(Bytes("a.txt"), "1234 (cut)\n");
}

TEST_F(LogFile, LineThatNotEvenTheMarkHasRoomForIsCountedAsLost)
{
    DbgLogFileC file(L"a.txt", 4);
    EXPECT_TRUE(file.append("1234567\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "");
    file.setLimit(0);
    EXPECT_TRUE(file.append("next\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "(1 lines could not be written and are lost)\nnext\n");
}

TEST_F(LogFile, LimitSetWhileRunningHolds)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("12345\n", Later()));
    file.setLimit(8);
    EXPECT_TRUE(file.append("678\n", Later()));
    EXPECT_EQ(Bytes("a.1.txt"), "12345\n");
    EXPECT_EQ(Bytes("a.txt"), "678\n");
}

TEST_F(LogFile, FullFileThatCannotBecomeTheOlderOneDoesNotGrow)
{
    DbgLogFileC file(L"a.txt", 4, 1);
    EXPECT_TRUE(file.append("123\n", Later()));
    boost::filesystem::create_directories(m_directory.Path() / "log/a.1.txt/in the way");
    EXPECT_FALSE(file.append("456\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "123\n");
}

TEST_F(LogFile, FileThatIsTakenAwayBetweenTwoLinesOfAMomentIsWrittenAgain)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    boost::filesystem::remove(Path("a.txt"));
    EXPECT_TRUE(file.append("two\n", SameMoment()));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

TEST_F(LogFile, FileThatSomebodyRenamesIsBegunAnew)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    boost::filesystem::rename(Path("a.txt"), Path("kept.txt"));
    EXPECT_TRUE(file.append("two\n", Later()));
    EXPECT_EQ(Bytes("kept.txt"), "one\n");
    EXPECT_EQ(Bytes("a.txt"), "two\n");
}

TEST_F(LogFile, DirectoryNamedMeanwhileGetsTheLinesFromThenOn)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    EXPECT_TRUE(file.append("two\n", SameMoment()));
    BSS::OS::SetLogDirectory(m_directory.Wide("other"));
    EXPECT_TRUE(file.append("three\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
    EXPECT_EQ(Support::ReadAll(m_directory.Narrow("other/a.txt")), "three\n");
}

// Somebody has opened the file while we wrote nothing, and died in the middle of a write.
TEST_F(LogFile, BeginningOfALineThatSomebodyLeavesWhileTheFileIsOpenIsRemoved)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("one\n", Later()));
    Support::WriteAll(Path("a.txt"), "one\nwhole\nthe beginning of a li");
    EXPECT_TRUE(file.append("two\n", Later()));
    EXPECT_TRUE(file.append("three\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "one\nwhole\ntwo\nthree\n");
}

TEST_F(LogFile, BeginningOfALineThatADeadWriterLeftIsRemoved)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    Support::WriteAll(Path("a.txt"), "whole\nbegi");
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("next\n"));
    EXPECT_EQ(Bytes("a.txt"), "whole\nnext\n");
}

TEST_F(LogFile, LongestLineThatADeadWriterLeftIsRemovedWithWhatFilledItUp)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    const std::size_t longest = DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE - 2; // without its end
    Support::WriteAll(Path("a.txt"), "one\n" + std::string(longest, 'x') + std::string(4095, ' '));
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("next\n"));
    EXPECT_EQ(Bytes("a.txt"), "one\nnext\n");
}

TEST_F(LogFile, LongTextWithoutALineEndThatIsNotOursIsEndedAndKept)
{
    boost::filesystem::create_directories(m_directory.Path() / "log");
    const std::string strange(30000, 's');
    Support::WriteAll(Path("a.txt"), strange);
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.append("next\n"));
    EXPECT_EQ(Bytes("a.txt"), strange + "\nnext\n");
}

TEST_F(LogFile, TwoFilesOfOneNameMixNoLinesLoseNoneAndKeepTheLimit)
{
    constexpr int LINES = 3000;
    const auto logging = [](char who) {
        DbgLogFileC file(L"a.txt", 4096, 200);
        for (int i = 0; i < LINES; ++i) {
            EXPECT_TRUE(file.append(BSS::UTI::Format("%c %d\n", who, i)));
            EXPECT_TRUE(i % 10 != 0 || file.handOver());
        }
        EXPECT_TRUE(file.flush());
    };
    std::thread other(logging, 'b');
    logging('a');
    other.join();
    std::multiset<std::string> found;
    for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "log")) {
        const std::string text = Support::ReadAll(entry.path().string());
        EXPECT_LE(text.size(), 4096u);
        for (const std::string& line : LinesOf(text))
            found.insert(line);
    }
    EXPECT_EQ(found.size(), 2u * LINES);
    for (int i = 0; i < LINES; ++i) {
        EXPECT_EQ(found.count(BSS::UTI::Format("a %d", i)), 1u);
        EXPECT_EQ(found.count(BSS::UTI::Format("b %d", i)), 1u);
    }
}

TEST_F(LogFile, FlushSucceedsWithAndWithoutAFile)
{
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(file.append("one\n"));
    EXPECT_TRUE(file.flush());
}

TEST_F(LogFile, LinesThatCouldNotBeWrittenComeWhenItWorksAgain)
{
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    DbgLogFileC file(L"a.txt", 0);
    EXPECT_FALSE(file.append("one\n", Later()));
    EXPECT_FALSE(file.flush());
    boost::filesystem::remove(m_directory.Path() / "log");
    EXPECT_TRUE(file.append("two\n", Later()));
    EXPECT_EQ(Bytes("a.txt"), "one\ntwo\n");
}

constexpr std::size_t FIT = DbgLogFileC::BUFFER_BYTES / 1000; // lines of a thousand bytes that may wait
constexpr std::size_t ROOM = DbgLogFileC::BUFFER_BYTES % 1000;

TEST_F(LogFile, LinesBeyondTheBufferAreCountedWhileNothingCanBeWritten)
{
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    DbgLogFileC file(L"a.txt", 0);
    const std::string line(999, 'x');
    const std::size_t logged = FIT + 35;
    for (std::size_t i = 0; i < logged; ++i)
        static_cast<void>(file.append(line + "\n", Later()));
    boost::filesystem::remove(m_directory.Path() / "log");
    EXPECT_TRUE(file.append("next\n", Later()));
    EXPECT_TRUE(file.append("last\n", Later()));
    const std::vector<std::string> lines = LinesOf(Bytes("a.txt"));
    const std::size_t kept = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
    EXPECT_EQ(kept, FIT);
    EXPECT_NE(Bytes("a.txt").find("(35 lines could not be written and are lost)\n"), std::string::npos);
    EXPECT_EQ(lines.back(), "last");
}

// However much room the lines before have left in the buffer: whether it takes the line and what tells of the
// losses, the line alone, or neither.
TEST_F(LogFile, FirstLineAfterLostOnesIsNotLostItself)
{
    for (std::size_t length = ROOM - 60; length <= ROOM + 4; ++length) {
        Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
        auto file = std::make_unique<DbgLogFileC>(L"a.txt", 0);
        const std::string line = std::string(999, 'x') + "\n";
        for (std::size_t i = 0; i < FIT + 15; ++i)
            static_cast<void>(file->append(line, {1000, 0}));
        boost::filesystem::remove(m_directory.Path() / "log");
        const std::string first = std::string(length - 1, 'y') + "\n";
        EXPECT_TRUE(file->append(first, {1000, 0})) << length;
        EXPECT_TRUE(file->flush());
        const std::string text = Support::WithoutFilling(Bytes("a.txt"));
        EXPECT_EQ(text.substr(std::min(text.size(), FIT * 1000)),
                  "(15 lines could not be written and are lost)\n" + first);
        file.reset(); // Windows does not let a directory go in which a file is open
        TakeAway();
    }
}

TEST_F(LogFile, UnwritableDirectoryIsToldOnTheDebugOutputAndWorkGoesOn)
{
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    const Support::DebugOutputCapture debug;
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.Log(LEVEL_ERROR, "late");
    EXPECT_EQ(debug.Text(), FAILURE);
    boost::filesystem::remove(m_directory.Path() / "log");
    consumer.Log(LEVEL_ERROR, "found");
    EXPECT_NE(Bytes("a.txt").find("late\n"), std::string::npos);
    EXPECT_NE(Bytes("a.txt").find("found\n"), std::string::npos);
}

TEST_F(LogFile, FailedFlushRaisesTheAssertion)
{
    Support::WriteAll(m_directory.Narrow("log"), "a file in the directory's place");
    const Support::DebugOutputCapture debug;
    const Support::ReportCapture reports;
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.Log(LEVEL_ERROR, "late");
    EXPECT_FALSE(consumer.flush());
    EXPECT_EQ(reports.Count("!\"Failed flushing logs!\""), 1u);
}

TEST_F(LogFile, ErrorsAndFatalErrorsAreInTheFileWhenLogReturns)
{
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.setPrefixKind(PrefixKind::None);
    consumer.Log(LEVEL_INFO, "first"); // begins the moment in which others wait
    std::string expected = "first\n";
    for (int i = 0; i < 100; ++i) {
        consumer.Log(i % 2 == 0 ? LEVEL_ERROR : LEVEL_FATAL, "e%d", i);
        expected += BSS::UTI::Format("e%d\n", i);
        EXPECT_EQ(Bytes("a.txt"), expected);
    }
}

TEST_F(LogFile, FlushLevelSaysWhichLinesDoNotWait)
{
    DbgLogFileConsumerC consumer("name", L"a.txt");
    consumer.setPrefixKind(PrefixKind::None);
    consumer.setFlushLevel(LEVEL_FINEST);
    std::string expected;
    for (int i = 0; i < 20; ++i) {
        consumer.Log(LEVEL_FINEST, "%d", i);
        expected += BSS::UTI::Format("%d\n", i);
        EXPECT_EQ(Bytes("a.txt"), expected);
    }
}

TEST_F(LogFile, NoLineIsLongerThanTheConsumersLimit)
{
    DbgLogFileConsumerC consumer("name", L"a.txt", 1024);
    consumer.Log(LEVEL_ERROR, "%s", std::string(3000, 'x'));
    std::size_t found = 0;
    for (const auto& entry : boost::filesystem::directory_iterator(m_directory.Path() / "log")) {
        const std::string text = Support::ReadAll(entry.path().string());
        EXPECT_LE(text.size(), 1024u);
        EXPECT_EQ(text.back(), '\n');
        found += static_cast<std::size_t>(std::count(text.begin(), text.end(), 'x'));
    }
    EXPECT_EQ(found, 3000u);
}

TEST(LogFileName, IsTheConsumersNameWithAnExtension)
{
    EXPECT_EQ(LogFileNameOf("Network"), L"Network.txt");
    EXPECT_EQ(LogFileNameOf("two words-3.x"), L"two words-3.x.txt");
    EXPECT_EQ(LogFileNameOf("\u00E9"), L"\u00E9.txt");
}

TEST(LogFileName, NeverLeavesTheDirectory)
{
    for (const char* name :
         {"../x", "..\\x", "/etc/x", "..", ".", "a/../../x", "C:\\x", "C:x", "\\\\server\\x"}) {
        const std::wstring file = LogFileNameOf(name);
        EXPECT_EQ(file.find_first_of(L"/\\:"), std::wstring::npos) << name;
        EXPECT_NE(file.front(), L'.') << name;
    }
    EXPECT_EQ(LogFileNameOf("../x"), L"%2E.%2Fx.txt");
}

TEST(LogFileName, DifferentNamesHaveDifferentFiles)
{
    const std::string hundreds(300, 'x');
    std::set<std::wstring> files;
    const std::vector<std::string> names = {"a/b", "a_b", "a%2Fb", "a\\b",   "",
                                            "%",   ".",   "%2E",   hundreds, hundreds + "y"};
    for (const std::string& name : names)
        files.insert(LogFileNameOf(name));
    EXPECT_EQ(files.size(), names.size());
}

TEST(LogFileName, DevicesOfOtherSystemsAreNoFileNames)
{
    EXPECT_EQ(LogFileNameOf("con"), L"%63on.txt");
    EXPECT_EQ(LogFileNameOf("NUL.x"), L"%4EUL.x.txt");
    EXPECT_EQ(LogFileNameOf("COM1"), L"%43OM1.txt");
    EXPECT_EQ(LogFileNameOf("lpt9.x"), L"%6Cpt9.x.txt");
    EXPECT_EQ(LogFileNameOf("COM\u00B9"), L"%43OM\u00B9.txt");
}

TEST(LogFileName, LongerNamesThanThoseOfDevicesAreTakenAsTheyAre)
{
    for (const char* name : {"console", "Communication", "COM", "COM10", "COMx", "LPTs", "Nullify"})
        EXPECT_EQ(LogFileNameOf(name), BSS::HAL::WidePath(std::string(name) + ".txt"));
}

TEST(LogFileName, NamesNoOlderFileOfAnotherConsumer)
{
    EXPECT_EQ(LogFileNameOf("Network.1"), L"Network%2E1.txt");
    EXPECT_EQ(LogFileNameOf("ErrorLog.12"), L"ErrorLog%2E12.txt");
    EXPECT_EQ(LogFileNameOf("a.1.2"), L"a.1%2E2.txt");
    EXPECT_EQ(LogFileNameOf("a.1x"), L"a.1x.txt");
    EXPECT_EQ(LogFileNameOf("a."), L"a..txt");
    EXPECT_EQ(LogFileNameOf("1"), L"1.txt");
}

TEST(LogFileName, IsShortEnoughForEveryFileSystem)
{
    EXPECT_LT(LogFileNameOf(std::string(100000, '/')).size(), 250u);
}

TEST(LogFileName, OlderFilesBearTheirNumberBeforeTheExtension)
{
    EXPECT_EQ(OlderLogFile(L"/d.x/a.txt", 2), L"/d.x/a.2.txt");
    EXPECT_EQ(OlderLogFile(L"/d.x/a", 12), L"/d.x/a.12");
}

} // namespace
