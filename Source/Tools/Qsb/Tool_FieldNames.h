// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which field of an interchange file is which value of a point, told by the names that common programs give
// them.
#pragma once

#include "Tools/Qsb/Tool_PointSource.h"
#include "Tools/Qsb/Tool_ScanValue.h"

#include <array>
#include <optional>

namespace Tool {

/// The field of each value, none where the source has no such field.
using FieldMapT = std::array<std::optional<std::size_t>, s_nScanValues>;

/// Names are compared without case and without the prefix "scalar_". Where several fields could be a value
/// the most telling name wins, then the first one; the others stay unused.
FieldMapT MapFields(const std::vector<SourceFieldC>& fields);

/// The value that a field of this name could be.
std::optional<ScanValueT> ValueNamed(const std::string& field);

} // namespace Tool
