// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log directory of a test's own; the run's usual one comes back afterwards.
#pragma once

#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <string>

namespace Support {

class LogFolderTest : public testing::Test
{
protected:
    LogFolderTest() { BSS::OS::SetLogDirectory(m_directory.Wide("log")); }
    ~LogFolderTest() override { BSS::OS::SetLogDirectory(L""); }

    std::string Path(const std::string& name) const { return m_directory.Narrow("log/" + name); }
    std::string Bytes(const std::string& name) const { return ReadAll(Path(name)); }
    bool Exists(const std::string& name) const { return boost::filesystem::exists(Path(name)); }
    void TakeAway() const { boost::filesystem::remove_all(m_directory.Path() / "log"); }

    const TemporaryDirectory m_directory;
};

} // namespace Support
