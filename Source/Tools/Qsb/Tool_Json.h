// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a verb says on stdout: text, or a JSON document whose keys keep the order in which they were put in.
// NaN and the infinities, which JSON does not have, become null; bytes of file names that are not UTF-8
// become U+FFFD.
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace Tool {

using JsonT = nlohmann::ordered_json;

/// A document with the two keys that every one begins with: "schema_version", which rises when a key changes
/// its meaning or goes, and "command".
JsonT NewJsonDocument(std::string_view verb);

/// Prints the document and a line end to stdout.
void PrintJson(const JsonT& document);

/// Prints text to stdout. ToolErrorC with s_iFailed when stdout does not take it.
void PrintResult(std::string_view text);

} // namespace Tool
