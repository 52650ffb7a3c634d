// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The result of a check as text for people and as JSON for programs.
#pragma once

#include "Tools/Qsb/Tool_Json.h"

#include <string>

namespace Tool {

struct FindingC;
struct ScanCheckC;

/// One line for the file, then its findings. With `bErrorsOnly` neither warnings nor notes, and nothing at
/// all for a file without errors.
std::string CheckText(const std::string& name, const ScanCheckC& check, bool bErrorsOnly);

/// Keys: file, status ("ok" or "damaged"), size_bytes, points, points_readable, errors, warnings, notes,
/// findings, not_listed (how many more there are, by id).
JsonT CheckJson(const std::string& name, const ScanCheckC& check);

/// Keys: id, severity, title, offset, block, expected, found, readable.
JsonT FindingJson(const FindingC& finding);

/// The finding in one line.
std::string FindingLine(const FindingC& finding);

} // namespace Tool
