// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests of the format layer share: a folder, the reports, and a container with its strategy.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbStrategy.h"
#include "Support/QsbBytes.h"
#include "Support/ReportCapture.h"
#include "Support/ScanFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace SioTest {

inline constexpr char s_szQsb[] = R"(..\..\Source\Sio\Sio_Qsb)";
inline constexpr char s_szDefinition[] = R"(..\..\Source\Sio\SIO_QsbPointDefinitionImpl)";
inline constexpr char s_szPoint[] = R"(..\..\Source\Sio\Sio_QsbPoint)";
inline constexpr char s_szReader[] = R"(..\..\Source\Sio\Sio_QsbReader)";
inline constexpr char s_szReaderImpl[] = R"(..\..\Source\Sio\Sio_QsbReaderImpl)";

/// Whether there was exactly one report, an assertion of this text in this source file.
inline testing::AssertionResult ReportedOnce(const Support::ReportCapture& reports, const std::string& text,
                                             const std::string& file)
{
    const std::vector<Support::ReportT> all = reports.Reports();
    if (all.size() == 1 && all[0].kind == Support::ReportT::Kind::Assertion && all[0].text == text &&
        all[0].file == file) {
        return testing::AssertionSuccess();
    }
    testing::AssertionResult failure = testing::AssertionFailure() << all.size() << " reports:";
    for (const Support::ReportT& report : all)
        failure << " [" << report.text << " in " << report.file << "]";
    return failure;
}

/// A container, the strategy it is used with, and room for what is read.
struct Scan
{
    SIO::QsbC container;
    SIO::QsbStrategyC strategy;
    Support::BytesT buffer;

    bool Open(const std::string& path, bool read = true, bool write = false)
    {
        return container.Open(BSS::HAL::WidePath(path), read, write);
    }

    /// Interprets a block, by default the one that is chosen automatically.
    bool Interpret(std::int64_t block = -1, bool transform = true)
    {
        return container.CreateReadStrategyData(strategy, transform, block);
    }

    /// Reads stored points into the buffer, which has room for 1000 points of 100 bytes.
    std::uint32_t Read(std::uint32_t points)
    {
        buffer.assign(100000, 0xEE);
        return container.ReadPoints(strategy, buffer.data(), points);
    }
};

class ScanTest : public testing::Test
{
protected:
    Support::ScanFolder folder;
    Support::ReportCapture reports;
    Scan scan;
};

} // namespace SioTest
