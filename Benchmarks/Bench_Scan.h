// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The scans that are read, and ways of reading all their points: through the exported interface, and as fast
// as this machine can read a file and copy as many bytes as that takes.
#pragma once

#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_QsbPoint.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace SIO {
class PointDefinitionC;
} // namespace SIO

namespace Bench {

/// The elements of a stored point, as kind and type code.
struct LayoutT
{
    const char* pszShortName;
    const char* pszName;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> elements;

    void Define(SIO::PointDefinitionC& definition) const;
};

/// A, B and C, the layouts that most scans have, and those that need more than moving bytes.
const std::vector<LayoutT>& AllLayouts();

/// Points in a plane grid with every element set.
std::vector<SIO::QsbPointC> MakePoints(std::size_t nPoints);

/// What stands before the points of a scan.
struct BlocksBeforeT
{
    std::uint32_t uiBlocks = 0;
    /// Two of three are empty. Without it all have a byte of data, so that each has a record of its own.
    bool bEmptyPairs = false;
};

/// A scan with a rigid matrix in a file that goes when this goes.
class ScanFileC
{
public:
    ScanFileC(const std::string& strPath, const LayoutT& layout, std::uint32_t uiPoints,
              const BlocksBeforeT& before = {});
    ~ScanFileC();
    ScanFileC(const ScanFileC&) = delete;
    ScanFileC& operator=(const ScanFileC&) = delete;

    const std::string& Path() const { return m_strPath; }
    std::uint32_t Points() const { return m_uiPoints; }
    std::size_t RecordBytes() const { return m_nRecordBytes; }
    std::uint64_t DataOffset() const { return m_ullDataOffset; }

private:
    std::string m_strPath;
    std::uint32_t m_uiPoints;
    std::size_t m_nRecordBytes = 0;
    std::uint64_t m_ullDataOffset = 0;
};

/// Opens the scan and reads all its points through the exported interface.
void ReadAll(const ScanFileC& scan, SIO::QsbInstructionSetT eSet, unsigned int uiBatch = 10000);

/// The limit: reads the stored points batch by batch and makes 40 bytes of each, without looking at them.
void CopyAll(const ScanFileC& scan, unsigned int uiBatch = 10000);

/// Reads the stored points and does nothing with them.
void FreadAll(const ScanFileC& scan, unsigned int uiBatch = 10000);

} // namespace Bench
