// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where log and configuration lie on Windows.
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Support/Environment.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

using namespace BSS::HAL;
using Support::ScopedEnvironment;

namespace {

class Directories : public testing::Test
{
protected:
    const Support::TemporaryDirectory m_directory;
    const std::string m_base = NarrowPath(WidePathOf(m_directory.Path()));
    const ScopedEnvironment m_log{"SCANREADER_LOG_DIR", std::nullopt};
    const ScopedEnvironment m_config{"SCANREADER_CONFIG_DIR", std::nullopt};
    const ScopedEnvironment m_local{"LOCALAPPDATA", m_base};
};

TEST_F(Directories, LogAndConfigurationLieInTheUsersApplicationData)
{
    EXPECT_EQ(UserLogDirectory(), WidePath(m_base + R"(\ScanReader\Log)"));
    EXPECT_EQ(UserConfigDirectory(), WidePath(m_base + R"(\ScanReader)"));
    EXPECT_TRUE(boost::filesystem::is_directory(m_directory.Path() / "ScanReader" / "Log"));
}

TEST_F(Directories, VariablesOfOursComeFirst)
{
    const ScopedEnvironment log("SCANREADER_LOG_DIR", m_base + R"(\own\log)");
    const ScopedEnvironment config("SCANREADER_CONFIG_DIR", m_base + R"(\own)");
    EXPECT_EQ(UserLogDirectory(), WidePath(m_base + R"(\own\log)"));
    EXPECT_EQ(UserConfigDirectory(), WidePath(m_base + R"(\own)"));
}

TEST_F(Directories, VariablesThatAreNotAbsoluteAreIgnored)
{
    for (const char* relative : {"log", R"(\log)", "C:log", R"(..\log)"}) {
        const ScopedEnvironment log("SCANREADER_LOG_DIR", relative);
        EXPECT_EQ(UserLogDirectory(), WidePath(m_base + R"(\ScanReader\Log)")) << relative;
    }
}

TEST_F(Directories, WithoutApplicationDataTheLogLiesInTheTemporaryDirectory)
{
    const ScopedEnvironment local("LOCALAPPDATA", std::nullopt);
    const ScopedEnvironment temporary("TMP", m_base);
    EXPECT_EQ(UserLogDirectory(), WidePath(m_base + R"(\ScanReader\Log)"));
    EXPECT_EQ(UserConfigDirectory(), L"");
}

TEST_F(Directories, DeepDirectoriesWithNamesOutsideAsciiAreMade)
{
    const std::wstring deep = WidePath(m_base + "\\\xC3\xBC\\\xE6\xB8\xAC/c");
    EXPECT_TRUE(MakePrivateDirectory(deep));
    EXPECT_TRUE(MakePrivateDirectory(deep));
    EXPECT_TRUE(boost::filesystem::is_directory(FilesystemPath(deep)));
}

TEST_F(Directories, ADirectoryThatIsAFileIsNotMade)
{
    const std::wstring file = m_directory.Wide("file");
    std::fclose(_wfopen(file.c_str(), L"wb"));
    EXPECT_FALSE(MakePrivateDirectory(file));
    EXPECT_FALSE(MakePrivateDirectory(JoinPath(file, L"below")));
}

} // namespace
