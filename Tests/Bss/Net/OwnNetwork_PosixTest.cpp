// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests' own networks need of the process in which they are made.
#include "Support/OwnNetwork_Posix.h"
#include "Support/Environment.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

std::ptrdiff_t CountOfThreads()
{
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::distance(begin(threads), end(threads));
}

#if defined(__SANITIZE_THREAD__)
constexpr std::ptrdiff_t OF_THE_CHECKER = 1;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
constexpr std::ptrdiff_t OF_THE_CHECKER = 1;
#else
constexpr std::ptrdiff_t OF_THE_CHECKER = 0;
#endif
#else
constexpr std::ptrdiff_t OF_THE_CHECKER = 0;
#endif

// A process with several threads is given no namespace for users.
TEST(OwnNetworkPosixDeathTest, ScenarioBeginsWithOneThreadAlsoWhereTestsHaveALimit)
{
    const Support::ScopedEnvironment limited("SCANREADER_TEST_SECONDS", "60");
    Support::ExpectInOwnNetwork([] { return CountOfThreads() <= 1 + OF_THE_CHECKER ? 0 : 1; });
}

} // namespace
