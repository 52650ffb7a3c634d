// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A library that has logged leaves nothing behind when it is unloaded.
#include "Support/Files.h"
#include "Support/LogLines.h"
#include "Support/TemporaryDirectory.h"

#include <boost/filesystem/operations.hpp>
#include <dlfcn.h>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// How many of the process's descriptors are open in the directory.
int DescriptorsIn(const std::string& directory)
{
    int count = 0;
    for (const auto& entry : boost::filesystem::directory_iterator("/proc/self/fd")) {
        boost::system::error_code gone;
        const auto target = boost::filesystem::read_symlink(entry.path(), gone);
        if (!gone && target.string().find(directory) == 0) ++count;
    }
    return count;
}

TEST(LogUnload, LibraryThatHasLoggedWritesWhatWaitsAndLeavesNoFileAndNoHookBehind)
{
    using LogT = void (*)(const char* directory, const char* text);
    const Support::TemporaryDirectory directory;
    const std::string folder = directory.Narrow("log");
    void* const library = ::dlopen(BSS_LOG_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << ::dlerror();
    const auto log = reinterpret_cast<LogT>(::dlsym(library, "ScanReaderLogPluginLog"));
    ASSERT_NE(log, nullptr);
    log(folder.c_str(), "main");
    // A thread that has logged, and ends when the library is gone.
    std::promise<void> logged;
    std::promise<void> end;
    std::thread thread([&] {
        log(folder.c_str(), "thread");
        logged.set_value();
        end.get_future().wait();
    });
    logged.get_future().wait();
    EXPECT_GE(DescriptorsIn(folder), 1);

    EXPECT_EQ(::dlclose(library), 0);
    EXPECT_EQ(::dlopen(BSS_LOG_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr);
    EXPECT_EQ(DescriptorsIn(folder), 0);
    EXPECT_EQ(Support::LinesOf(Support::ReadAll(folder + "/plugin.txt")).size(), 4u);
    end.set_value();
    thread.join(); // what the library kept of the thread is not asked for any more
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0); // nor what it wanted to know of a fork
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

} // namespace
