// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What only Windows has: long paths, devices with names, text mode.
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

using namespace BSS::HAL;

namespace {

class WindowsStream : public testing::Test
{
protected:
    void Write(const std::wstring& path, const char* text) const
    {
        std::FILE* const stream = OpenStream(path, "wb");
        ASSERT_NE(stream, nullptr);
        EXPECT_GE(std::fputs(text, stream), 0);
        EXPECT_EQ(std::fclose(stream), 0);
    }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(WindowsStream, AFileBehindAPathLongerThan260CharactersIsWrittenReplacedAndRead)
{
    std::wstring folder = WidePathOf(m_directory.Path());
    for (int i = 0; i < 5; ++i)
        folder = JoinPath(folder, std::wstring(90, L'd'));
    ASSERT_GT(folder.size(), 450u);
    ASSERT_TRUE(MakePrivateDirectory(folder));
    const std::wstring path = JoinPath(folder, L"scan.qsb");
    const std::wstring temporary = TemporaryNameBeside(path);
    Write(path, "old");
    Write(temporary, "new");
    EXPECT_EQ(RenameNew(temporary, path), RenameResult::Exists);
    EXPECT_EQ(RenameOver(temporary, path), RenameResult::Done);
    EXPECT_EQ(Support::ReadAll(NarrowPath(path)), "new");
    EXPECT_TRUE(boost::filesystem::exists(FilesystemPath(path)));
    EXPECT_TRUE(RemoveFile(path));
    boost::filesystem::remove_all(boost::filesystem::path(LR"(\\?\)" + WidePathOf(m_directory.Path())));
}

TEST_F(WindowsStream, DevicesAreNotOpened)
{
    for (const wchar_t* device : {L"NUL", L"nul", LR"(\\.\NUL)", L"CON", LR"(\\.\pipe\none)"}) {
        EXPECT_EQ(OpenStream(device, "rb"), nullptr) << NarrowPath(device);
        EXPECT_EQ(OpenStream(device, "r+b"), nullptr) << NarrowPath(device);
    }
}

TEST_F(WindowsStream, NoByteIsTakenForTheEndOfALineOrOfTheFile)
{
    const std::string bytes = "a\r\nb\nc\x1A\r";
    Support::WriteAll(m_directory.Narrow("file"), bytes);
    std::FILE* const stream = OpenStream(m_directory.Wide("file"), "rb");
    ASSERT_NE(stream, nullptr);
    char read[16] = {};
    EXPECT_EQ(std::string(read, std::fread(read, 1, sizeof read, stream)), bytes);
    std::fclose(stream);
}

TEST_F(WindowsStream, AFileThatIsBeingReadMayBeOpenedByOthers)
{
    Support::WriteAll(m_directory.Narrow("file"), "bytes");
    std::FILE* const first = OpenStream(m_directory.Wide("file"), "rb");
    std::FILE* const second = OpenStream(m_directory.Wide("file"), "r+b");
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    std::fclose(first);
    std::fclose(second);
}

} // namespace
