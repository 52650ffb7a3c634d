// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Moves fields from records of one form to records of another, byte by byte as they are. Fields that lie next
// to each other in both forms move together. Knows no types. Any thread, once it is complete.
#pragma once

#include <cstddef>
#include <vector>

namespace Tool {

class RecordMovesC
{
public:
    /// Adds a field of `nBytes` at `nSource` in the one form and `nTarget` in the other. Fields come in the
    /// order of their targets.
    void Add(std::size_t nSource, std::size_t nTarget, std::size_t nBytes);

    /// Moves the fields of `nRecords` records that begin `nSourceStride` bytes apart to records that begin
    /// `nTargetStride` bytes apart. What is between the fields stays.
    void Move(const char* pSource, std::size_t nSourceStride, char* pTarget, std::size_t nTargetStride,
              std::size_t nRecords) const;

private:
    struct MoveT
    {
        std::size_t nSource;
        std::size_t nTarget;
        std::size_t nBytes;
    };

    std::vector<MoveT> m_vecMoves;
};

} // namespace Tool
