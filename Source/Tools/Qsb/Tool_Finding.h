// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a check finds: the rules, each with an id that stays the same for ever, and the findings. The list
// keeps the first few findings of a rule and counts the others, so that a hostile file cannot fill the memory
// or the screen. The rules stand in one table, from which the enumeration and the texts are made;
// Docs/check-findings.md explains each of them. Belongs to one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

enum class SeverityT
{
    Note,    ///< unusual, without consequence for who reads
    Warning, ///< readable, but something is lost or most likely not meant so
    Error,   ///< the reader refuses the file or does not deliver every point
};

const char* NameOf(SeverityT eSeverity);

/// name, id, severity where the finding weighs most, title
#define TOOL_CHECK_RULES(RULE)                                                                               \
    /* The chain of blocks. */                                                                               \
    RULE(EmptyFile, "QSB-001", Error, "the file is empty")                                                   \
    RULE(FirstBlock, "QSB-002", Error, "the file does not begin with a file header")                         \
    RULE(HeadTorn, "QSB-003", Error, "the file ends within a block head")                                    \
    RULE(HeaderSize, "QSB-004", Error, "a header size is not a multiple of 16")                              \
    RULE(HeaderTorn, "QSB-005", Error, "the file ends within a header")                                      \
    RULE(TooManyEntries, "QSB-006", Error, "more blocks and header entries than a reader keeps")             \
    RULE(DataTorn, "QSB-007", Error, "the file ends within the data of a block")                             \
    RULE(ZeroBlocks, "QSB-008", Warning, "stretch of zeros where blocks are expected")                       \
    RULE(UnknownBlock, "QSB-009", Note, "block of an unknown kind")                                          \
    RULE(UnfinishedBlock, "QSB-010", Warning, "point cloud with neither header nor data")                    \
    /* The file header block. */                                                                             \
    RULE(NoVersion, "QSB-101", Error, "no format version")                                                   \
    RULE(Version, "QSB-102", Error, "unsupported format version")                                            \
    RULE(NewerVersion, "QSB-103", Note, "format version above those known")                                  \
    RULE(FileHeaderContent, "QSB-104", Note, "the file header holds more than the version")                  \
    RULE(SecondFileHeader, "QSB-105", Warning, "more than one file header")                                  \
    /* The header of a point cloud. */                                                                       \
    RULE(NoPointCloud, "QSB-201", Error, "no point cloud")                                                   \
    RULE(OtherPointCloud, "QSB-202", Note, "further point cloud, which readers do not reach")                \
    RULE(TagTooLarge, "QSB-203", Error, "a tag above the largest one")                                       \
    RULE(PositionType, "QSB-204", Error, "unknown encoding of the positions")                                \
    RULE(NoPosition, "QSB-205", Note, "no entry for the positions")                                          \
    RULE(ElementType, "QSB-206", Warning, "unknown encoding of an element")                                  \
    RULE(NoIntensity, "QSB-207", Error, "no intensities")                                                    \
    RULE(SecondElement, "QSB-208", Warning, "more than one element of a kind")                               \
    RULE(SecondValue, "QSB-209", Warning, "more than one entry with the same tag")                           \
    RULE(ElementSize, "QSB-210", Note, "the stated size of an element is not its size")                      \
    RULE(EntryType, "QSB-211", Note, "type code other than writers use")                                     \
    RULE(ReservedBytes, "QSB-212", Note, "unused bytes of an entry are not zero")                            \
    RULE(UnknownTag, "QSB-213", Note, "unknown tag")                                                         \
    RULE(CountTooLarge, "QSB-214", Error, "more points stated than the data have room for")                  \
    RULE(CountSmaller, "QSB-215", Note, "fewer points stated than the data have room for")                   \
    RULE(CountType, "QSB-216", Warning, "number of points in an unknown type, which states none")            \
    RULE(CountIgnored, "QSB-217", Note, "number of points stated where it does not count")                   \
    RULE(DataRemainder, "QSB-218", Note, "the data do not end with a whole point")                           \
    RULE(NoPoints, "QSB-219", Note, "no points")                                                             \
    RULE(TooManyElements, "QSB-220", Error, "more elements in a point than readers take")                    \
    /* What the header says of the scan. */                                                                  \
    RULE(PoseNotFinite, "QSB-301", Warning, "the pose is not finite")                                        \
    RULE(PoseLastRow, "QSB-302", Warning, "the last row of the pose is not 0 0 0 1")                         \
    RULE(PoseNotRigid, "QSB-303", Note, "the pose is not a rotation and a shift")                            \
    RULE(GridSize, "QSB-304", Warning, "the grid size makes no grid")                                        \
    RULE(GridMissing, "QSB-305", Note, "grid size and grid indices do not come together")                    \
    RULE(GridTooSmall, "QSB-306", Warning, "more points than the grid has cells")                            \
    RULE(BoxMissing, "QSB-307", Note, "no bounding box")                                                     \
    RULE(BoxInvalid, "QSB-308", Warning, "the bounding box is not a box")                                    \
    RULE(HeightNotFinite, "QSB-309", Warning, "the instrument height is not finite")                         \
    /* The points, which only a deep check looks at. */                                                      \
    RULE(PositionNotFinite, "QSB-401", Warning, "positions that are not finite")                             \
    RULE(PoseDivision, "QSB-402", Warning, "positions that the pose does not map to finite ones")            \
    RULE(GridIndex, "QSB-403", Warning, "grid indices outside the grid")                                     \
    RULE(OutsideBox, "QSB-404", Warning, "points outside the bounding box")                                  \
    RULE(ValueNotFinite, "QSB-405", Warning, "intensities or noise levels that are not finite")              \
    RULE(ValueCut, "QSB-406", Note, "values that readers of 16-bit integers get changed")                    \
    RULE(ZeroPoints, "QSB-407", Warning, "the data end in zeros")

enum class RuleT
{
#define TOOL_RULE_NAME(name, id, severity, title) name,
    TOOL_CHECK_RULES(TOOL_RULE_NAME)
#undef TOOL_RULE_NAME
};

struct RuleTextC
{
    const char* szId;
    SeverityT eSeverity;
    const char* szTitle;
};

/// In the order of the enumeration.
inline constexpr RuleTextC s_aRules[] = {
#define TOOL_RULE_TEXT(name, id, severity, title) {id, SeverityT::severity, title},
    TOOL_CHECK_RULES(TOOL_RULE_TEXT)
#undef TOOL_RULE_TEXT
};

constexpr const RuleTextC& TextOf(RuleT eRule)
{
    return s_aRules[static_cast<std::size_t>(eRule)];
}

struct FindingC
{
    RuleT eRule = RuleT::EmptyFile;
    SeverityT eSeverity = SeverityT::Error; ///< where the rule itself weighs less, that counts
    std::optional<std::uint64_t> oOffset{}; ///< byte in the file where the finding stands
    std::optional<std::uint64_t> oBlock{};  ///< index of the block it is about
    std::string strExpected{};
    std::string strFound{};
    std::string strReadable{}; ///< what can be read in spite of it; empty where nothing is lost
};

class FindingListC
{
public:
    /// Findings of one rule that are kept.
    static constexpr std::uint64_t s_ullKept = 10;

    void Add(FindingC finding);

    /// As above for findings that may be very many: `make` is called for those that are kept.
    template<typename MakeT>
    void AddMade(RuleT eRule, SeverityT eSeverity, const MakeT& make)
    {
        if (CountOf(eRule) < s_ullKept) {
            FindingC finding = make();
            finding.eRule = eRule;
            finding.eSeverity = eSeverity;
            Add(std::move(finding));
        } else {
            Count(eRule, eSeverity);
        }
    }

    const std::vector<FindingC>& GetKept() const noexcept { return m_vecKept; }
    std::uint64_t CountOf(RuleT eRule) const noexcept { return m_aByRule[static_cast<std::size_t>(eRule)]; }
    std::uint64_t CountOf(SeverityT eSeverity) const noexcept
    {
        return m_aBySeverity[static_cast<std::size_t>(eSeverity)];
    }
    bool HasErrors() const noexcept { return CountOf(SeverityT::Error) != 0; }

    /// Puts what is kept into order: errors first, then by offset, what has none last.
    void Sort();

private:
    /// Returns the severity that counts.
    SeverityT Count(RuleT eRule, SeverityT eSeverity) noexcept;

    std::vector<FindingC> m_vecKept;
    std::array<std::uint64_t, std::size(s_aRules)> m_aByRule{};
    std::array<std::uint64_t, 3> m_aBySeverity{};
};

} // namespace Tool
