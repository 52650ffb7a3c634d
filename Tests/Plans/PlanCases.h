// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the plans are tried on: every combination of elements, stored points of random bytes and of the values
// that go wrong first, and the answers of the virtual calls.
#pragma once

#include "API_Hdr/GMAT_Algebra.h"
#include "Sio/SIO_QsbPointDefElements.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbPoint.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
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

/// An element that the kernels have never heard of, in the clothes of one that they know.
class StrangeIntensityC final : public SIO::PointDefElementT<SIO::PD_INTENSITY, 2>
{
public:
    void Encode(const SIO::QsbPointGetterI&, char* pDestination) const override
    {
        SIO::StoreLittleEndian(pDestination, s_usStored);
    }
    void Decode(SIO::QsbPointModifierI& modifier, const char*, const GMAT::Matrix4C&) const override
    {
        modifier.SetIntensity(42.0);
    }
    std::uint32_t GetTypeCode() const override { return SIO::QsbFormat::s_uiTypeUInt16; }

    static constexpr std::uint16_t s_usStored = 0x4242;
};

/// Bytes at an address of their own in a block of the heap, and beside them bytes that must stay as they are.
/// Where the compiler watches the ends of blocks, the block ends with the bytes: nothing may be read behind
/// them either.
class ExactBytesC
{
public:
    ExactBytesC(const void* pBytes, std::size_t nBytes, std::size_t nShift);

    char* Get() const { return m_pBlock.get() + m_nShift; }

    /// The bytes as records, which lie at multiples of 8 and not always of 16 or 32.
    SIO::QsbPointC* Records() const { return reinterpret_cast<SIO::QsbPointC*>(Get()); }

    /// Whether the bytes before and behind them are what they were.
    bool IsAloneTouched() const;

private:
    std::size_t m_nBytes;
    std::size_t m_nShift;
    std::unique_ptr<char[]> m_pBlock;
};

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
