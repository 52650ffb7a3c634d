// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cases, and the virtual calls as oracle.
#include "Plans/PlanCases.h"

#include "Sio/Sio_QsbFileFormat.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Support/Environment.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace PlanTest {

using namespace SIO;
namespace F = QsbFormat;

namespace {

/// Numbers on the edges: of the type, of what the integers behind it hold, and those that are no numbers.
template<typename T>
std::vector<T> AwkwardNumbers()
{
    using L = std::numeric_limits<T>;
    std::vector<T> numbers = {T(0),
                              T(1),
                              T(0.5),
                              T(255.9),
                              T(256),
                              T(32767),
                              T(32768),
                              T(65535.9),
                              T(65536),
                              T(2147483648.0),
                              T(4294967296.0),
                              T(9223372036854775808.0),
                              T(1e30),
                              L::max(),
                              L::min(),
                              L::denorm_min(),
                              L::min() / 3,
                              L::infinity(),
                              L::quiet_NaN(),
                              L::signaling_NaN()};
    for (std::size_t i = 0, n = numbers.size(); i < n; ++i)
        numbers.push_back(-numbers[i]);
    return numbers;
}

/// Leaves the random bits that stand there, or puts an awkward or an ordinary number.
template<typename T>
void PutNumber(char* pTarget, std::mt19937& random)
{
    static const std::vector<T> s_vecAwkward = AwkwardNumbers<T>();
    const auto uiChoice = random() % 4;
    if (uiChoice == 0) return;
    T number = s_vecAwkward[random() % s_vecAwkward.size()];
    if (uiChoice == 1) number = static_cast<T>(static_cast<double>(random() % 200001) / 64.0 - 1500.0);
    std::memcpy(pTarget, &number, sizeof number);
}

void PutNumbers(const PointDefinitionI& element, char* pTarget, std::mt19937& random)
{
    switch (element.GetTypeCode()) {
    case F::s_uiTypeFloatTriple:
        for (std::size_t i = 0; i < 3; ++i)
            PutNumber<float>(pTarget + i * sizeof(float), random);
        return;
    case F::s_uiTypeDoubleTriple:
        for (std::size_t i = 0; i < 3; ++i)
            PutNumber<double>(pTarget + i * sizeof(double), random);
        return;
    case F::s_uiTypeFloat:
        return PutNumber<float>(pTarget, random);
    default:
        return; // every pattern of bits is an integer like any other
    }
}

void FillRandomly(char* pTarget, std::size_t nBytes, std::mt19937& random)
{
    for (std::size_t i = 0; i < nBytes; ++i)
        pTarget[i] = static_cast<char>(random());
}

constexpr char s_cBeside = '\x6B';

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t s_nBehind = 0;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr std::size_t s_nBehind = 0;
#else
constexpr std::size_t s_nBehind = 64;
#endif
#else
constexpr std::size_t s_nBehind = 64;
#endif

/// The environment may ask for a set that this machine lacks. Another one would then be used in silence.
class AskedSetC final : public testing::Environment
{
public:
    void SetUp() override
    {
        const std::string strAsked = Support::GetEnvironment("SCANREADER_SIMD").value_or("");
        if (strAsked.empty()) return;
        const std::optional<QsbInstructionSetT> oAsked = InstructionSetNamed(strAsked);
        ASSERT_TRUE(oAsked.has_value()) << "there is no instruction set " << strAsked;
        if (GetInstructionSet() != *oAsked) GTEST_SKIP() << "this machine lacks " << strAsked;
    }
};

const testing::Environment* const s_pAskedSet = testing::AddGlobalTestEnvironment(new AskedSetC);

bool SameNumber(double dExpected, double dActual)
{
    if (std::isnan(dExpected)) return std::isnan(dActual);
    return std::memcmp(&dExpected, &dActual, sizeof dExpected) == 0;
}

} // namespace

std::string LayoutT::Name() const
{
    std::string strName = bRaw ? "raw" : "transformed";
    for (const ElementT& element : elements) {
        strName.append(" ").append(std::to_string(element.uiKind));
        strName.append("/").append(std::to_string(element.uiTypeCode));
    }
    return strName;
}

void LayoutT::Define(PointDefinitionC& definition) const
{
    for (const ElementT& element : elements)
        definition.Add(PointDefinitionC::CreateElement(element.uiKind, element.uiTypeCode, !bRaw));
}

std::vector<LayoutT> AllCombinations(std::uint32_t uiPositionType, bool bRaw)
{
    // 0: the element is absent.
    std::vector<LayoutT> layouts;
    for (const std::uint32_t uiIntensity : {0u, F::s_uiTypeInt16, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
        for (const std::uint32_t uiNoise : {0u, F::s_uiTypeUInt8, F::s_uiTypeUInt16, F::s_uiTypeFloat}) {
            for (const std::uint32_t uiGrid : {0u, F::s_uiTypeUInt16Pair, F::s_uiTypeUInt32Pair}) {
                for (const std::uint32_t uiColor : {0u, F::s_uiTypeColor}) {
                    LayoutT layout{{{PD_POSITION, uiPositionType}}, bRaw};
                    if (uiIntensity != 0) layout.elements.push_back({PD_INTENSITY, uiIntensity});
                    if (uiNoise != 0) layout.elements.push_back({PD_LEVEL_OF_NOISE, uiNoise});
                    if (uiGrid != 0) layout.elements.push_back({PD_GRID, uiGrid});
                    if (uiColor != 0) layout.elements.push_back({PD_COLOR, uiColor});
                    layouts.push_back(layout);
                }
            }
        }
    }
    return layouts;
}

std::vector<LayoutT> LayoutsWithDuplicates()
{
    const std::vector<ElementT> choice = {
        {PD_INTENSITY, F::s_uiTypeInt16},      {PD_INTENSITY, F::s_uiTypeUInt16},
        {PD_INTENSITY, F::s_uiTypeFloat},      {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt8},
        {PD_LEVEL_OF_NOISE, F::s_uiTypeFloat}, {PD_LEVEL_OF_NOISE, F::s_uiTypeUInt16},
        {PD_GRID, F::s_uiTypeUInt16Pair},      {PD_GRID, F::s_uiTypeUInt32Pair},
        {PD_COLOR, F::s_uiTypeColor}};
    std::mt19937 random(5);
    std::vector<LayoutT> layouts;
    for (std::size_t nElements = 2; nElements < 32; ++nElements) {
        LayoutT layout{{{PD_POSITION, random() % 2 == 0 ? F::s_uiTypeFloatTriple : F::s_uiTypeDoubleTriple}},
                       random() % 4 == 0};
        layout.elements.push_back(choice[nElements % choice.size()]);
        layout.elements.push_back(choice[nElements % choice.size()]);
        while (layout.elements.size() < nElements)
            layout.elements.push_back(choice[random() % choice.size()]);
        layouts.push_back(layout);
    }
    return layouts;
}

std::vector<GMAT::Matrix4C> Matrices()
{
    constexpr double dNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double dInfinity = std::numeric_limits<double>::infinity();
    std::vector<GMAT::Matrix4C> matrices(8); // the first stays the identity
    GMAT::Matrix4C& rigid = matrices[1];
    rigid.At(0, 0) = rigid.At(1, 1) = 0.8;
    rigid.At(1, 0) = 0.6;
    rigid.At(0, 1) = -0.6;
    rigid.At(0, 3) = 481234.5678;
    rigid.At(1, 3) = -5412345.678;
    rigid.At(2, 3) = 0.1;
    matrices[2].At(3, 3) = 2.0; // halves
    GMAT::Matrix4C& projective = matrices[3];
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            projective.At(i, j) = 0.1 * (i + 1) - 0.37 * (j + 1) + (i == j ? 2.0 : 0.0);
    }
    matrices[4].At(3, 3) = 0.0; // w is zero for every point, or NaN
    matrices[5].At(3, 0) = 1.0; // w is 1 for some points and not for others
    matrices[6].At(1, 2) = dNaN;
    matrices[7].At(0, 3) = dInfinity;
    matrices[7].At(3, 1) = 1e-300;
    return matrices;
}

std::vector<QsbInstructionSetT> PlanSets()
{
    std::vector<QsbInstructionSetT> sets;
    for (const QsbInstructionSetT eSet :
         {QsbInstructionSetT::ePlain, QsbInstructionSetT::eBaseline, QsbInstructionSetT::eAvx2}) {
        const ScopedInstructionSetC scoped(eSet);
        if (GetInstructionSet() == eSet) sets.push_back(eSet);
    }
    return sets;
}

ExactBytesC::ExactBytesC(const void* pBytes, std::size_t nBytes, std::size_t nShift)
    : m_nBytes(nBytes), m_nShift(nShift), m_pBlock(new char[nShift + nBytes + s_nBehind])
{
    std::memset(m_pBlock.get(), s_cBeside, nShift + nBytes + s_nBehind);
    if (nBytes != 0) std::memcpy(Get(), pBytes, nBytes);
}

bool ExactBytesC::IsAloneTouched() const
{
    const auto isBeside = [](char c) { return c == s_cBeside; };
    return std::all_of(m_pBlock.get(), Get(), isBeside) &&
           std::all_of(Get() + m_nBytes, Get() + m_nBytes + s_nBehind, isBeside);
}

std::vector<char> RandomStoredPoints(const PointDefinitionC& definition, std::size_t nPoints,
                                     std::mt19937& random)
{
    std::vector<char> stored(nPoints * definition.GetSizeInBytes());
    FillRandomly(stored.data(), stored.size(), random);
    char* pElement = stored.data();
    for (std::size_t i = 0; i < nPoints; ++i) {
        for (std::size_t j = 0; j < definition.GetCount(); ++j) {
            PutNumbers(*definition.GetElement(j), pElement, random);
            pElement += definition.GetElement(j)->GetSizeInBytes();
        }
    }
    return stored;
}

std::vector<QsbPointC> RandomRecords(std::size_t nPoints, std::mt19937& random)
{
    std::vector<QsbPointC> records(nPoints);
    char* const pBytes = reinterpret_cast<char*>(records.data());
    FillRandomly(pBytes, nPoints * sizeof(QsbPointC), random);
    for (std::size_t i = 0; i < nPoints; ++i) {
        for (std::size_t j = 0; j < 3; ++j)
            PutNumber<double>(pBytes + i * sizeof(QsbPointC) + 8 * j, random);
    }
    return records;
}

void DecodeVirtually(const PointDefinitionC& definition, const char* pStored, std::size_t nPoints,
                     const GMAT::Matrix4C& matrix, QsbPointC* pRecords)
{
    QsbPointArrayIteratorC target(pRecords);
    for (std::size_t i = 0; i < nPoints; ++i) {
        definition.Decode(target.Current(), pStored + i * definition.GetSizeInBytes(), matrix);
        target.Advance();
    }
}

std::vector<char> EncodeVirtually(const PointDefinitionC& definition, const QsbPointC* pRecords,
                                  std::size_t nPoints)
{
    std::vector<char> stored(nPoints * definition.GetSizeInBytes());
    ArrayBasedPointSourceC source(pRecords);
    for (std::size_t i = 0; i < nPoints; ++i) {
        definition.Encode(source.Current(), stored.data() + i * definition.GetSizeInBytes());
        source.Advance();
    }
    return stored;
}

testing::AssertionResult SameRecords(const QsbPointC* pExpected, const QsbPointC* pActual,
                                     std::size_t nPoints)
{
    for (std::size_t i = 0; i < nPoints; ++i) {
        const QsbPointC& a = pExpected[i];
        const QsbPointC& b = pActual[i];
        const bool bSamePosition = SameNumber(a.x, b.x) && SameNumber(a.y, b.y) && SameNumber(a.z, b.z);
        const bool bSameColor = a.red == b.red && a.green == b.green && a.blue == b.blue;
        const bool bSameRest = a.intensity == b.intensity && a.levelOfNoise == b.levelOfNoise &&
                               a.gridIndex0 == b.gridIndex0 && a.gridIndex1 == b.gridIndex1;
        if (!bSamePosition || !bSameColor || !bSameRest) {
            return testing::AssertionFailure()
                   << "record " << i << " of " << nPoints << ": expected " << testing::PrintToString(a)
                   << " and got " << testing::PrintToString(b);
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult SameBytes(const QsbPointC* pExpected, const QsbPointC* pActual, std::size_t nPoints)
{
    constexpr std::size_t nAlignment = offsetof(QsbPointC, blue) + 1;
    for (std::size_t i = 0; i < nPoints; ++i) {
        if (reinterpret_cast<const char*>(pExpected + i)[nAlignment] !=
            reinterpret_cast<const char*>(pActual + i)[nAlignment]) {
            return testing::AssertionFailure()
                   << "the byte of alignment of record " << i << " of " << nPoints;
        }
    }
    return SameRecords(pExpected, pActual, nPoints);
}

} // namespace PlanTest
