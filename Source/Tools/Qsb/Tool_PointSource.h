// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A file of points in some interchange form, as import sees it: fields with names and types, what is said of
// the scan as a whole, and the values of chosen fields batch by batch. What the fields mean is not known
// here.
#pragma once

#include "Tools/Qsb/Tool_NumberType.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

class ScanInputI;

struct SourceFieldC
{
    std::string strName;
    NumberTypeT eType = NumberTypeT::Double;
};

/// What stands beside the points: where the scanner stood, and its grid.
struct ScanFrameC
{
    std::optional<std::array<double, 16>> oPose;        ///< row-major, maps column vectors; finite
    std::optional<std::array<std::uint64_t, 2>> oGrid;  ///< rows and columns, 1 to 2^32 each
    std::optional<double> oInstrumentHeight;            ///< finite
    std::optional<std::array<double, 16>> oAppliedPose; ///< has been applied to the positions; never read
};

/// A part of the source that is not a field of numbers, so that no scan file can carry it.
struct SourceExtraC
{
    std::string strName;
    bool bData = false; ///< measured data, not a remark about it
};

class PointSourceI
{
public:
    /// Most points of a batch.
    static constexpr std::size_t s_nBatch = 10000;

    virtual ~PointSourceI() = default;

    /// What messages call the source.
    virtual const std::string& GetName() const = 0;

    virtual const std::vector<SourceFieldC>& GetFields() const = 0;
    virtual const ScanFrameC& GetHeader() const = 0;
    virtual const std::vector<SourceExtraC>& GetExtras() const = 0;
    virtual std::uint64_t GetNumberOfPoints() const = 0;

    /// Chooses the fields whose values are read, by their index, and goes back to the first point.
    virtual void Select(const std::vector<std::size_t>& fields) = 0;

    /// Reads the next points: columns[i][j] is the value of the i-th chosen field of point j. Returns how
    /// many, 0 at the end. ToolErrorC with s_iDamaged, and the line or byte, when the file does not hold what
    /// its header says.
    virtual std::size_t Read(std::vector<std::vector<double>>& columns) = 0;
};

/// An input with the name that messages give it.
struct NamedInputC
{
    std::string strName;
    std::unique_ptr<ScanInputI> poInput;
};

/// Reads the raw form: a JSON header and the bytes of the points. ToolErrorC with s_iDamaged when the header
/// makes no sense or the data has another size than it says.
std::unique_ptr<PointSourceI> ReadRaw(const NamedInputC& header, NamedInputC data);

/// Reads a PLY file, ascii or binary. ToolErrorC with s_iDamaged when it is none or is torn.
std::unique_ptr<PointSourceI> ReadPly(NamedInputC input);

} // namespace Tool
