// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Paths as the system's calls are given them: as text, since some systems open what others would refuse.
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <gtest/gtest.h>
#include <windows.h>

using namespace BSS::HAL;

namespace {

const std::wstring LONG_NAME(200, L'n');

TEST(LongPath, AShortPathIsLeftAlone)
{
    for (const wchar_t* path :
         {L"scan.qsb", LR"(C:\scan.qsb)", LR"(\\server\share\scan.qsb)", L"../scan.qsb", L"NUL", L""})
        EXPECT_EQ(LongPath(path), path);
}

TEST(LongPath, ALongAbsolutePathGetsThePrefix)
{
    const std::wstring path = LR"(C:\)" + LONG_NAME + LR"(\)" + LONG_NAME;
    EXPECT_EQ(LongPath(path), LR"(\\?\)" + path);
}

TEST(LongPath, ALongPathOnAServerGetsItsOwnPrefix)
{
    const std::wstring path = LR"(\\server\share\)" + LONG_NAME + LR"(\)" + LONG_NAME;
    EXPECT_EQ(LongPath(path), LR"(\\?\UNC)" + path.substr(1));
}

TEST(LongPath, SlashesAndDotsAreResolvedBeforeThePrefixIsPut)
{
    const std::wstring path = L"C:/" + LONG_NAME + L"/./away/../" + LONG_NAME;
    EXPECT_EQ(LongPath(path), LR"(\\?\C:\)" + LONG_NAME + LR"(\)" + LONG_NAME);
}

TEST(LongPath, ARelativePathIsLongWhenTheWholeIs)
{
    const std::wstring path = LONG_NAME + LR"(\)" + LONG_NAME;
    const std::wstring longPath = LongPath(path);
    EXPECT_EQ(longPath.substr(0, 4), LR"(\\?\)");
    EXPECT_EQ(longPath.substr(longPath.size() - path.size()), path);
}

TEST(LongPath, WhatIsStillToBePutBehindItCounts)
{
    const std::wstring path = LR"(C:\)" + LONG_NAME; // of 203 characters
    EXPECT_EQ(LongPath(path, 44), path);
    EXPECT_EQ(LongPath(path, 45), LR"(\\?\)" + path);
}

TEST(LongPath, FoldersNeedThePrefixTwelveCharactersEarlier)
{
    const auto ofLength = [](std::size_t length) { return LR"(C:\)" + std::wstring(length - 3, L'd'); };
    EXPECT_EQ(LongPath(ofLength(247)), ofLength(247));
    EXPECT_EQ(LongPath(ofLength(248)), LR"(\\?\)" + ofLength(248));
}

TEST(LongPath, APrefixedPathIsLeftAlone)
{
    for (const std::wstring prefix : {LR"(\\?\C:\)", LR"(\\?\UNC\server\)", LR"(\\.\)"})
        EXPECT_EQ(LongPath(prefix + LONG_NAME + LONG_NAME), prefix + LONG_NAME + LONG_NAME);
}

TEST(LongPath, APrefixWrittenWithForwardSlashesIsAPrefixToo)
{
    EXPECT_EQ(LongPath(L"//?/C:/" + LONG_NAME + L"/" + LONG_NAME),
              LR"(\\?\C:\)" + LONG_NAME + LR"(\)" + LONG_NAME);
    EXPECT_EQ(LongPath(L"//./pipe/" + LONG_NAME + LONG_NAME), LR"(\\.\pipe\)" + LONG_NAME + LONG_NAME);
}

TEST(DeviceName, IsKnownInEitherCase)
{
    for (const wchar_t* device : {L"NUL", L"nul", L"CON", LR"(\\.\NUL)"})
        EXPECT_TRUE(NamesDevice(device)) << NarrowPath(device);
    for (const wchar_t* file :
         {L"NULL", L"scan.qsb", L"C:\\folder\\scan.qsb", LR"(\\server\share\scan.qsb)", L""})
        EXPECT_FALSE(NamesDevice(file)) << NarrowPath(file);
}

TEST(LongPath, TheFileSystemLibraryIsGivenTheLongForm)
{
    const std::wstring path = LR"(C:\)" + LONG_NAME + LR"(\)" + LONG_NAME;
    EXPECT_EQ(FilesystemPath(path).native(), LR"(\\?\)" + path);
}

TEST(NarrowPathText, Utf8BecomesUtf16AndBack)
{
    EXPECT_EQ(WidePath("M\xC3\xBCller \xF0\x9F\x93\x90"), L"M\u00FCller \U0001F4D0");
    EXPECT_EQ(NarrowPath(L"M\u00FCller \U0001F4D0"), "M\xC3\xBCller \xF0\x9F\x93\x90");
}

TEST(NarrowPathText, WhatIsNotUtf8IsReadInTheActiveCodePage)
{
    wchar_t expected[16] = {};
    ASSERT_GT(MultiByteToWideChar(CP_ACP, 0, "M\xFCller", -1, expected, 16), 0);
    EXPECT_EQ(WidePath("M\xFCller"), expected);
}

} // namespace
