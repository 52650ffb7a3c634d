// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The path map and the checked closing of handles.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_Handle.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Bss/Bss_Os/BSS_OS_PathMapCommonWinPC.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/ReportCapture.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <utility>

using namespace BSS::OS;
using BSS::UTI::StringC;

namespace {

TEST(PathMap, LogDirectoryIsTheEnvironmentsUntilOneIsSet)
{
    EXPECT_EQ(BSS::HAL::NarrowPath(LogDirectory()), Support::LogDirectory());
    SetLogDirectory(L"/elsewhere");
    EXPECT_EQ(LogDirectory(), L"/elsewhere");
    SetLogDirectory(L"");
    EXPECT_EQ(BSS::HAL::NarrowPath(LogDirectory()), Support::LogDirectory());
}

TEST(PathMap, AnswerIsRememberedUntilItIsSetAnew)
{
    SetLogDirectory(L"");
    const std::wstring before = LogDirectory();
    const Support::TemporaryDirectory other;
    const Support::ScopedEnvironment changed("SCANREADER_LOG_DIR", other.Narrow("log"));
    EXPECT_EQ(LogDirectory(), before);
    SetLogDirectory(L"");
    EXPECT_EQ(BSS::HAL::NarrowPath(LogDirectory()), other.Narrow("log"));
    SetLogDirectory(before);
}

TEST(PathMap, VersionChangesWithTheDirectory)
{
    const std::uint32_t before = LogDirectoryVersion();
    SetLogDirectory(L"");
    EXPECT_NE(LogDirectoryVersion(), before);
}

TEST(PathMap, InterfaceAnswersEveryKind)
{
    PathMapCommonWinPC map;
    for (const PathKind kind : {PathKind::Log, PathKind::Configuration, PathKind::Temporary}) {
        StringC path;
        EXPECT_EQ(map.GetPath(kind, path), BSS::RC_OK);
        EXPECT_FALSE(path.IsEmpty());
    }
    StringC path(L"before");
    EXPECT_EQ(map.GetPath(static_cast<PathKind>(99), path), 0x0200001Au);
    EXPECT_TRUE(path.IsEmpty());
}

TEST(PathMap, NullDirectoryIsAnInvalidArgument)
{
    EXPECT_EQ(PathMapCommonWinPC().SetPath(PathKind::Log, nullptr), 0x02000002u);
}

TEST(PathMap, DirectoryIsMadeWhenItCanBe)
{
    const Support::TemporaryDirectory directory;
    PathMapCommonWinPC map;
    EXPECT_EQ(map.SetPath(PathKind::Configuration, directory.Wide("a/b").c_str()), BSS::RC_OK);
    EXPECT_EQ(map.MakePath(PathKind::Configuration), BSS::RC_OK);
    EXPECT_TRUE(boost::filesystem::is_directory(directory.Path() / "a/b"));
    Support::WriteAll(directory.Narrow("file"), "");
    EXPECT_EQ(map.SetPath(PathKind::Configuration, directory.Wide("file/b").c_str()), BSS::RC_OK);
    EXPECT_EQ(map.MakePath(PathKind::Configuration), 0x0200001Au);
}

TEST(PathMap, SearchTellsWhatItFinds)
{
    const Support::TemporaryDirectory directory;
    Support::WriteAll(directory.Narrow("file"), "");
    PathMapCommonWinPC map;
    EXPECT_EQ(map.SetPath(PathKind::Temporary, directory.Path().wstring().c_str()), BSS::RC_OK);
    StringC path;
    EXPECT_EQ(map.FindEntry(PathKind::Temporary, L"file", path), 0x02000008u);
    EXPECT_EQ(path, directory.Wide("file").c_str());
    EXPECT_EQ(map.FindEntry(PathKind::Temporary, L"other", path), 0x0200001Bu);
    EXPECT_TRUE(path.IsEmpty());
}

TEST(PathMap, SearchDoesNotLeaveTheDirectory)
{
    PathMapCommonWinPC map;
    StringC path;
    for (const wchar_t* name : {L"", L".", L"..", L"../x", L"a/b", L"a\\b"})
        EXPECT_EQ(map.FindEntry(PathKind::Temporary, name, path), 0x02000002u);
    EXPECT_EQ(map.FindEntry(PathKind::Temporary, nullptr, path), 0x02000002u);
}

TEST(Handle, NoHandleIsClosedSilently)
{
    const Support::ReportCapture reports;
    HandleC handle;
    EXPECT_EQ(handle.Close(), BSS::RC_OK);
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(Handle, MovedHandleBelongsToTheOther)
{
    HandleC one(BSS::HAL::NativeHandleT{12345});
    HandleC two(std::move(one));
    EXPECT_EQ(one.Get(), BSS::HAL::NO_HANDLE); // NOLINT(bugprone-use-after-move): what this is about
    EXPECT_EQ(two.Detach(), 12345);
}

} // namespace
