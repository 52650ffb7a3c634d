// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where logs and configuration go, by the rules of a Linux desktop.
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace BSS::HAL;
using Support::ScopedEnvironment;

namespace {

unsigned ModeOf(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777u : 0;
}

// An environment in which every variable the rules look at points into one directory, or nowhere.
class Directories : public testing::Test
{
protected:
    std::string At(const std::string& name) const { return m_directory.Narrow(name); }
    static std::string Log() { return NarrowPath(UserLogDirectory()); }
    static std::string Config() { return NarrowPath(UserConfigDirectory()); }
    std::string TemporaryLog() const { return At("tmp/scanreader-") + std::to_string(::geteuid()); }

    // A home in which nothing can be made, not even by a superuser.
    void BlockHome() const { Support::WriteAll(At("home"), "a file, not a directory"); }

    void SetUp() override { ASSERT_TRUE(boost::filesystem::create_directory(m_directory.Path() / "tmp")); }

    const Support::TemporaryDirectory m_directory;
    const ScopedEnvironment m_log{"SCANREADER_LOG_DIR", std::nullopt};
    const ScopedEnvironment m_config{"SCANREADER_CONFIG_DIR", std::nullopt};
    const ScopedEnvironment m_xdgState{"XDG_STATE_HOME", std::nullopt};
    const ScopedEnvironment m_xdgConfig{"XDG_CONFIG_HOME", std::nullopt};
    const ScopedEnvironment m_home{"HOME", m_directory.Narrow("home")};
    const ScopedEnvironment m_tmp{"TMPDIR", m_directory.Narrow("tmp")};
};

TEST_F(Directories, LogIsUnderTheHomeByDefaultAndPrivate)
{
    EXPECT_EQ(Log(), At("home/.local/state/scanreader/log"));
    EXPECT_EQ(ModeOf(Log()), 0700u);
}

TEST_F(Directories, StateHomeGoesBeforeTheHome)
{
    const ScopedEnvironment state("XDG_STATE_HOME", At("state"));
    EXPECT_EQ(Log(), At("state/scanreader/log"));
}

TEST_F(Directories, OwnVariableGoesBeforeEverything)
{
    const ScopedEnvironment state("XDG_STATE_HOME", At("state"));
    const ScopedEnvironment own("SCANREADER_LOG_DIR", At("own/deep"));
    EXPECT_EQ(Log(), At("own/deep"));
    EXPECT_EQ(ModeOf(At("own/deep")), 0700u);
}

TEST_F(Directories, OwnVariableIsAnswerEvenWhenItCannotBeMade)
{
    BlockHome();
    const ScopedEnvironment own("SCANREADER_LOG_DIR", At("home/below"));
    EXPECT_EQ(Log(), At("home/below"));
}

TEST_F(Directories, RelativeAndEmptyVariablesAreIgnored)
{
    const ScopedEnvironment own("SCANREADER_LOG_DIR", "relative/log");
    const ScopedEnvironment state("XDG_STATE_HOME", "");
    const ScopedEnvironment config("SCANREADER_CONFIG_DIR", "relative");
    const ScopedEnvironment xdgConfig("XDG_CONFIG_HOME", "./x");
    EXPECT_EQ(Log(), At("home/.local/state/scanreader/log"));
    EXPECT_EQ(Config(), At("home/.config/scanreader"));
}

TEST_F(Directories, WithoutAWritableHomeTheLogIsPrivateUnderTheTemporaryDirectory)
{
    BlockHome();
    EXPECT_EQ(Log(), TemporaryLog());
    EXPECT_EQ(ModeOf(TemporaryLog()), 0700u);
}

TEST_F(Directories, TemporaryDirectoryThatOthersCanEnterIsRefused)
{
    BlockHome();
    ASSERT_EQ(::mkdir(TemporaryLog().c_str(), 0700), 0);
    ASSERT_EQ(::chmod(TemporaryLog().c_str(), 0755), 0);
    EXPECT_EQ(Log(), "");
}

TEST_F(Directories, TemporaryDirectoryThatIsALinkIsRefused)
{
    BlockHome();
    ASSERT_EQ(::mkdir(At("elsewhere").c_str(), 0700), 0);
    ASSERT_EQ(::symlink(At("elsewhere").c_str(), TemporaryLog().c_str()), 0);
    EXPECT_EQ(Log(), "");
}

TEST_F(Directories, TemporaryDirectoryOfSomebodyElseIsRefused)
{
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make a directory somebody else's";
    BlockHome();
    ASSERT_EQ(::mkdir(TemporaryLog().c_str(), 0700), 0);
    ASSERT_EQ(::chown(TemporaryLog().c_str(), 12345, 12345), 0);
    EXPECT_EQ(Log(), "");
}

TEST_F(Directories, ConfigurationFollowsItsOwnVariables)
{
    EXPECT_EQ(Config(), At("home/.config/scanreader"));
    const ScopedEnvironment xdg("XDG_CONFIG_HOME", At("cfg"));
    EXPECT_EQ(Config(), At("cfg/scanreader"));
    const ScopedEnvironment own("SCANREADER_CONFIG_DIR", At("mine"));
    EXPECT_EQ(Config(), At("mine"));
}

TEST_F(Directories, AskingForTheConfigurationMakesNothing)
{
    Config();
    EXPECT_FALSE(boost::filesystem::exists(m_directory.Path() / "home"));
}

TEST_F(Directories, ExistingDirectoriesKeepTheirPermissions)
{
    ASSERT_EQ(::mkdir(At("open").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(At("open").c_str(), 0755), 0);
    EXPECT_TRUE(MakePrivateDirectory(WidePath(At("open/inner"))));
    EXPECT_EQ(ModeOf(At("open")), 0755u);
    EXPECT_EQ(ModeOf(At("open/inner")), 0700u);
}

TEST_F(Directories, DirectoryBelowAFileCannotBeMade)
{
    BlockHome();
    EXPECT_FALSE(MakePrivateDirectory(WidePath(At("home/x"))));
    EXPECT_FALSE(MakePrivateDirectory(WidePath(At("home"))));
}

} // namespace
