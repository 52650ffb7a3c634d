// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A real scan in the neutral form of the test data: a header in JSON beside fixed-size little-endian records.
#pragma once

#include "Support/QsbBytes.h"

#include <optional>
#include <string>
#include <vector>

namespace Support {

struct RawField
{
    std::string name;
    std::string type; ///< f64, f32, u8, u16 or u32
    std::size_t offset;
};

struct RawScan
{
    std::uint32_t points = 0;
    std::size_t recordBytes = 0;
    std::vector<RawField> fields;
    std::optional<std::vector<double>> pose;        ///< row-major, 4 x 4
    std::optional<std::vector<std::uint32_t>> grid; ///< rows, columns
    BytesT records;

    const RawField* Find(const std::string& name) const;
    double Value(std::uint32_t point, const RawField& field) const;
};

/// Reads `path`.json and `path`.bin. Throws std::exception when they do not fit.
RawScan ReadRawScan(const std::string& path);

} // namespace Support
