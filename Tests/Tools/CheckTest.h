// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests of check and info share: a scan without any finding, ways to check bytes in memory, and
// words for what was found.
#pragma once

#include "Support/QsbBytes.h"
#include "Tools/Qsb/Tool_ScanCheck.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <gtest/gtest.h>
#include <string>

namespace CheckTest {

using Support::BytesT;
using Support::QsbBytes;
using Tool::SeverityT;

/// What the header of CleanScan says, for tests that change a part of it. Float positions (i, i, i), 16-bit
/// intensities and grid indices (0, i) in a grid of 2 rows and 16 columns, noise of 8 bits, colour.
QsbBytes CleanHeader(std::uint32_t id = 1);
BytesT CleanPoints(std::uint32_t points);

/// A scan of up to 16 points in which there is nothing to find.
QsbBytes CleanScan(std::uint32_t points = 3, std::uint32_t id = 1);

inline constexpr std::size_t s_nCleanPointBytes = 12 + 2 + 1 + 4 + 4;

/// Where the value of the first entry with `tag` stands in the file's last block.
std::size_t EntryOffset(const QsbBytes& file, std::uint32_t tag);

Tool::ScanCheckC Check(const BytesT& bytes, bool bDeep = true);
inline Tool::ScanCheckC Check(const QsbBytes& file, bool bDeep = true)
{
    return Check(file.Get(), bDeep);
}

/// The first finding with this id, null when there is none.
const Tool::FindingC* Find(const Tool::ScanCheckC& check, const std::string& id);

/// Every finding as "error QSB-001", for a message or a comparison, in order and with one blank between them.
std::string Found(const Tool::ScanCheckC& check);

/// Whether exactly these findings were made: "error QSB-001 note QSB-307".
testing::AssertionResult FindsOnly(const Tool::ScanCheckC& check, const std::string& findings);

} // namespace CheckTest
