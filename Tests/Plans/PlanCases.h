// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the plans are tried on: every combination of elements, stored points of random bytes and of the values
// that go wrong first, and the answers of the virtual calls.
#pragma once

#include "API_Hdr/GMAT_Algebra.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_QsbPoint.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace PlanTest {

/// An element as kind and type code.
struct ElementT
{
    std::uint32_t uiKind;
    std::uint32_t uiTypeCode;
};

/// The elements of a stored point.
struct LayoutT
{
    std::vector<ElementT> elements;
    bool bRaw = false;

    std::string Name() const;
    void Define(SIO::PointDefinitionC& definition) const;
};

/// Every choice of one encoding, or none, for each kind behind a position of this type.
std::vector<LayoutT> AllCombinations(std::uint32_t uiPositionType, bool bRaw);

/// Kinds that occur more than once, in many arrangements, up to as many elements as a plan takes.
std::vector<LayoutT> LayoutsWithDuplicates();

/// Matrices that do nothing, move, project, and break.
std::vector<GMAT::Matrix4C> Matrices();

/// The instruction sets that this machine has, the virtual calls excepted.
std::vector<SIO::QsbInstructionSetT> PlanSets();

/// Stored points of random bytes in which numbers of every awkward sort stand in the places of numbers.
std::vector<char> RandomStoredPoints(const SIO::PointDefinitionC& definition, std::size_t nPoints,
                                     std::mt19937& random);

/// Records of random bytes, alignment included, with awkward positions.
std::vector<SIO::QsbPointC> RandomRecords(std::size_t nPoints, std::mt19937& random);

/// What the virtual calls make of stored points, upon what `records` holds already.
void DecodeVirtually(const SIO::PointDefinitionC& definition, const char* pStored, std::size_t nPoints,
                     const GMAT::Matrix4C& matrix, SIO::QsbPointC* pRecords);

/// What the virtual calls store.
std::vector<char> EncodeVirtually(const SIO::PointDefinitionC& definition, const SIO::QsbPointC* pRecords,
                                  std::size_t nPoints);

/// Whether two stretches of records are equal to the bit; positions that are both NaN count as equal.
testing::AssertionResult SameRecords(const SIO::QsbPointC* pExpected, const SIO::QsbPointC* pActual,
                                     std::size_t nPoints);

/// The same, and the bytes of alignment are equal as well.
testing::AssertionResult SameBytes(const SIO::QsbPointC* pExpected, const SIO::QsbPointC* pActual,
                                   std::size_t nPoints);

/// Uses an instruction set for as long as it lives.
class ScopedInstructionSetC
{
public:
    explicit ScopedInstructionSetC(SIO::QsbInstructionSetT eSet) : m_eBefore(SIO::GetInstructionSet())
    {
        SIO::SetInstructionSet(eSet);
    }
    ~ScopedInstructionSetC() { SIO::SetInstructionSet(m_eBefore); }
    ScopedInstructionSetC(const ScopedInstructionSetC&) = delete;
    ScopedInstructionSetC& operator=(const ScopedInstructionSetC&) = delete;

private:
    SIO::QsbInstructionSetT m_eBefore;
};

} // namespace PlanTest
