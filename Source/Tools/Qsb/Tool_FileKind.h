// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The interchange forms, told by the end of a file's name.
#pragma once

#include <string>

namespace Tool {

enum class FileKindT
{
    Unknown,
    Ply,
    Csv,
    Raw,
};

/// The form that names like this one stand for, whatever the case: .ply, .csv, .json or .bin.
FileKindT FileKindOf(const std::string& path);

} // namespace Tool
