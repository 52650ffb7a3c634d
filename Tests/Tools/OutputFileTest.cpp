// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What happens to a target that a verb writes.
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_OutputFile.h"
#include "Tools/Qsb/Tool_OutputStream.h"

#include <gtest/gtest.h>

namespace {

using Tool::OutputFileC;
namespace fs = boost::filesystem;

class OutputFile : public testing::Test
{
protected:
    std::ptrdiff_t CountFiles() const
    {
        return std::distance(fs::directory_iterator(m_directory.Path()), fs::directory_iterator());
    }

    std::string Refusal(const std::string& target, bool bOverwrite,
                        const std::vector<std::string>& inputs = {}) const
    {
        try {
            const OutputFileC output(target, bOverwrite, inputs);
        } catch (const Tool::ToolErrorC& error) {
            EXPECT_EQ(error.GetExitCode(), Tool::s_iFailed);
            return error.what();
        }
        return "";
    }

    const Support::TemporaryDirectory m_directory;
    const std::string m_strTarget = m_directory.Narrow("target");
};

TEST_F(OutputFile, ACommittedFileHasTheTargetsNameAndNothingElseRemains)
{
    OutputFileC output(m_strTarget, false);
    Support::WriteAll(output.GetTemporaryPath(), "new");
    output.Commit();
    EXPECT_EQ(Support::ReadAll(m_strTarget), "new");
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(OutputFile, WhatIsStreamedInPartsOfAnySizeIsWhole)
{
    for (const std::size_t part : {std::size_t{1000}, std::size_t{1} << 20, std::size_t{3000001}}) {
        const OutputFileC output(m_strTarget, false);
        std::string all;
        Tool::OutputStreamC stream(output);
        for (char letter = 'a'; all.size() < 5000000;
             letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1)) {
            stream.Buffer().append(part, letter);
            stream.Written();
            all.append(part, letter);
        }
        stream.Close();
        EXPECT_TRUE(Support::ReadAll(output.GetTemporaryPath()) == all) << part;
    }
}

TEST_F(OutputFile, WithoutCommitTheOldFileStaysAndNothingElseRemains)
{
    Support::WriteAll(m_strTarget, "old");
    {
        const OutputFileC output(m_strTarget, true);
        Support::WriteAll(output.GetTemporaryPath(), "half");
    }
    EXPECT_EQ(Support::ReadAll(m_strTarget), "old");
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(OutputFile, AnExistingTargetIsRefusedWithoutOverwrite)
{
    Support::WriteAll(m_strTarget, "old");
    EXPECT_EQ(Refusal(m_strTarget, false), m_strTarget + ": exists already; --overwrite replaces it");
}

TEST_F(OutputFile, AnExistingTargetIsReplacedWithOverwrite)
{
    Support::WriteAll(m_strTarget, "old");
    OutputFileC output(m_strTarget, true);
    Support::WriteAll(output.GetTemporaryPath(), "new");
    output.Commit();
    EXPECT_EQ(Support::ReadAll(m_strTarget), "new");
    EXPECT_EQ(CountFiles(), 1);
}

TEST_F(OutputFile, AReplacedTargetKeepsItsPermissions)
{
    Support::WriteAll(m_strTarget, "old");
    fs::permissions(m_strTarget, fs::owner_read | fs::owner_write);
    OutputFileC output(m_strTarget, true);
    Support::WriteAll(output.GetTemporaryPath(), "new");
    output.Commit();
    EXPECT_EQ(fs::status(m_strTarget).permissions() & fs::perms_mask, fs::owner_read | fs::owner_write);
}

TEST_F(OutputFile, ATargetThatComesIntoBeingMeanwhileIsNotReplaced)
{
    OutputFileC output(m_strTarget, false);
    Support::WriteAll(output.GetTemporaryPath(), "new");
    Support::WriteAll(m_strTarget, "theirs");
    EXPECT_THROW(output.Commit(), Tool::ToolErrorC);
    EXPECT_EQ(Support::ReadAll(m_strTarget), "theirs");
}

TEST_F(OutputFile, TheInputIsNoOutputByWhateverName)
{
    Support::WriteAll(m_strTarget, "input");
    fs::create_symlink(m_strTarget, m_directory.Path() / "link");
    EXPECT_NE(Refusal(m_directory.Narrow("link"), true, {m_strTarget}).find("is the input as well"),
              std::string::npos);
}

TEST_F(OutputFile, ASymbolicLinkStaysAndItsTargetIsReplaced)
{
    Support::WriteAll(m_strTarget, "old");
    fs::create_symlink("target", m_directory.Path() / "link");
    OutputFileC output(m_directory.Narrow("link"), true);
    Support::WriteAll(output.GetTemporaryPath(), "new");
    output.Commit();
    EXPECT_TRUE(fs::is_symlink(m_directory.Path() / "link"));
    EXPECT_EQ(Support::ReadAll(m_strTarget), "new");
}

TEST_F(OutputFile, FoldersAndMissingFoldersAreRefused)
{
    EXPECT_NE(Refusal(m_directory.Narrow(""), true), "");
    EXPECT_NE(Refusal(m_directory.Narrow("no/such"), false).find("folder does not exist"), std::string::npos);
    EXPECT_NE(Refusal("", false).find("not a file name"), std::string::npos);
}

TEST_F(OutputFile, ADeviceIsRefused)
{
    for (const bool bOverwrite : {false, true})
        EXPECT_NE(Refusal(QSB_TEST_DEVICE, bOverwrite).find("not a regular file"), std::string::npos);
}

} // namespace
