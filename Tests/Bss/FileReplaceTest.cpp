// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Putting a new file in the place of an old one.
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>

using namespace BSS::HAL;

namespace {

class FileReplace : public testing::Test
{
protected:
    void Make(const std::string& name, const std::string& bytes) const
    {
        Support::WriteAll(m_directory.Narrow(name), bytes);
    }
    std::string Bytes(const std::string& name) const { return Support::ReadAll(m_directory.Narrow(name)); }
    bool Exists(const std::string& name) const
    {
        return boost::filesystem::exists(m_directory.Path() / name);
    }
    std::wstring Wide(const std::string& name) const { return m_directory.Wide(name); }

    const Support::TemporaryDirectory m_directory;
};

TEST_F(FileReplace, RenameOverReplacesTheTarget)
{
    Make("new", "new");
    Make("target", "old");
    EXPECT_EQ(RenameOver(Wide("new"), Wide("target")), RenameResult::Done);
    EXPECT_EQ(Bytes("target"), "new");
    EXPECT_FALSE(Exists("new"));
}

TEST_F(FileReplace, RenameNewTakesAFreeName)
{
    Make("new", "new");
    EXPECT_EQ(RenameNew(Wide("new"), Wide("target")), RenameResult::Done);
    EXPECT_EQ(Bytes("target"), "new");
    EXPECT_FALSE(Exists("new"));
}

TEST_F(FileReplace, RenameNewLeavesAnExistingTargetAlone)
{
    Make("new", "new");
    Make("target", "old");
    EXPECT_EQ(RenameNew(Wide("new"), Wide("target")), RenameResult::Exists);
    EXPECT_EQ(Bytes("target"), "old");
    EXPECT_EQ(Bytes("new"), "new");
}

TEST_F(FileReplace, RenamingWhatIsNotThereFails)
{
    EXPECT_EQ(RenameOver(Wide("none"), Wide("target")), RenameResult::Failed);
    EXPECT_EQ(RenameNew(Wide("none"), Wide("target")), RenameResult::Failed);
    EXPECT_FALSE(Exists("target"));
}

TEST_F(FileReplace, OfTwoThatTakeOneNewNameOneWins)
{
    Make("a", "a");
    Make("b", "b");
    std::atomic<int> done = 0;
    const auto take = [&](const char* name) {
        if (RenameNew(Wide(name), Wide("target")) == RenameResult::Done) ++done;
    };
    std::thread other(take, "a");
    take("b");
    other.join();
    EXPECT_EQ(done, 1);
}

TEST_F(FileReplace, TemporaryNamesLieBesideTheTargetAndDiffer)
{
    const std::wstring first = TemporaryNameBeside(Wide("target"));
    const std::wstring second = TemporaryNameBeside(Wide("target"));
    EXPECT_NE(first, second);
    EXPECT_EQ(FilesystemPath(first).parent_path(), m_directory.Path());
    EXPECT_FALSE(boost::filesystem::exists(FilesystemPath(first)));
}

TEST_F(FileReplace, TemporaryNameOfABareNameIsInTheSameDirectory)
{
    const boost::filesystem::path path = FilesystemPath(TemporaryNameBeside(L"target"));
    EXPECT_EQ(boost::filesystem::absolute(path).lexically_normal().parent_path(),
              boost::filesystem::current_path());
}

TEST_F(FileReplace, RemovingIsTrueWhenTheFileIsGone)
{
    Make("a", "a");
    EXPECT_TRUE(RemoveFile(Wide("a")));
    EXPECT_FALSE(Exists("a"));
    EXPECT_TRUE(RemoveFile(Wide("a")));
}

TEST_F(FileReplace, RemovingADirectoryFails)
{
    EXPECT_FALSE(RemoveFile(Wide("")));
}

TEST_F(FileReplace, DirectoryOfAFileCanBeFlushed)
{
    EXPECT_TRUE(SyncDirectoryOf(Wide("a")));
}

} // namespace
