// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a scan file holds, as text for people and as JSON for programs. Numbers are written with as many
// digits as it takes to read the same number back.
#pragma once

#include "Tools/Qsb/Tool_Json.h"

#include <cstdint>
#include <string>

namespace Tool {

struct ScanCheckC;

/// Lists at most `ullMaxBlocks` lines of blocks.
std::string InfoText(const std::string& name, const ScanCheckC& check, std::uint64_t ullMaxBlocks);

/// Keys: file, status, size_bytes, version, block_count, blocks, scan, statistics, errors. A fact that the
/// header does not state is null.
JsonT InfoJson(const std::string& name, const ScanCheckC& check, std::uint64_t ullMaxBlocks);

} // namespace Tool
