// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which form a file to be imported has, and the source that reads it.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool {

/// The files that belong to `path`: both of the raw form when the name ends in .json or .bin, else the one.
std::vector<std::string> SourceFiles(const std::string& path);

/// Opens the source that `path` names: the raw form by its name, else PLY. ToolErrorC with s_iFailed when a
/// file cannot be opened, with s_iDamaged when it makes no sense, with s_iUsage when it has neither form.
std::unique_ptr<PointSourceI> OpenSource(const std::string& path);

} // namespace Tool
