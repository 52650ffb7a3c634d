// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The main function of every test executable. Gives the framework a log and a configuration directory of the
// test run's own, so that no test reads or writes anything of the user's. A child process that a test starts
// shares the directories of the run that started it. With SCANREADER_TEST_SECONDS set no test may take longer than that.
#include "Support/Environment.h"
#include "Support/TemporaryDirectory.h"
#include "Support/TestLimit.h"

#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <string>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    std::unique_ptr<const Support::TemporaryDirectory> directory;
    if (!Support::GetEnvironment("SCANREADER_TEST_RUN")) {
        directory = std::make_unique<const Support::TemporaryDirectory>();
        Support::SetEnvironment("SCANREADER_TEST_RUN", directory->Narrow(""));
        Support::SetEnvironment("SCANREADER_LOG_DIR", directory->Narrow("log"));
    }
    const Support::PrivateConfiguration configuration(*Support::GetEnvironment("SCANREADER_TEST_RUN") + "config");
    if (const auto seconds = Support::GetEnvironment("SCANREADER_TEST_SECONDS")) {
        // The list of listeners owns it.
        testing::UnitTest::GetInstance()->listeners().Append(
            new Support::TestLimit(std::chrono::seconds(std::stoi(*seconds))));
    }
    return RUN_ALL_TESTS();
}
