// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The rules in the order in which the entries are met, then those that need all of them.
#include "Tools/Qsb/Tool_EntryCheck.h"

#include "Sio/Sio_QsbBlockHeader.h"
#include "Tools/Qsb/Tool_BlockPlace.h"
#include "Tools/Qsb/Tool_FormatNames.h"
#include "Tools/Qsb/Tool_ScanHeader.h"

#include <array>
#include <fmt/format.h>

namespace Tool {

namespace {

namespace Format = SIO::QsbFormat;
using SIO::QsbHeaderEntryC;

/// Bytes of an entry's value that lie behind its first four, or one.
bool HasBitsBehindUInt32(const QsbHeaderEntryC& entry)
{
    return entry.AsUInt64() >> 32 != 0;
}

bool HasBitsBehindByte(const QsbHeaderEntryC& entry)
{
    return entry.AsUInt64() >> 8 != 0;
}

struct TextsC
{
    std::string strExpected;
    std::string strFound;
    std::string strReadable{};
};

class EntryCheckC
{
public:
    EntryCheckC(const BlockPlaceC& place, FindingListC& findings) : m_rPlace(place), m_rFindings(findings) {}

    void CheckVersion(const QsbHeaderEntryC& entry)
    {
        const std::uint32_t uiVersion = entry.AsUInt32();
        if (!Format::IsSupportedVersion(uiVersion)) {
            Report(RuleT::Version, entry, [&] {
                return TextsC{fmt::format("{:#010x}, or {:#010x} and above", Format::s_uiVersion1,
                                          Format::s_uiVersion2),
                              fmt::format("{:#010x}", uiVersion)};
            });
        } else if (uiVersion > Format::s_uiVersion2) {
            Report(RuleT::NewerVersion, entry, [&] {
                return TextsC{
                    fmt::format("at most {:#010x}", Format::s_uiVersion2),
                    fmt::format("{:#010x}, which is read like {:#010x}", uiVersion, Format::s_uiVersion2)};
            });
        }
        CheckType(entry, Format::s_uiTypeUInt32);
        CheckReserved(entry, HasBitsBehindUInt32(entry));
    }

    void CheckPointCloudEntry(const QsbHeaderEntryC& entry)
    {
        const std::uint32_t uiTag = entry.GetTag();
        if (uiTag > Format::s_uiTagColor) {
            Report(RuleT::TagTooLarge, entry, [&] {
                return TextsC{fmt::format("a tag up to {}", Format::s_uiTagColor),
                              fmt::format("tag {}", uiTag)};
            });
            return;
        }
        const bool bSecond = m_anTags[uiTag]++ != 0;
        if (uiTag == Format::s_uiTagPosition) {
            CheckPosition(entry, bSecond);
        } else if (uiTag > Format::s_uiTagPosition) {
            CheckElement(entry);
        } else if (uiTag == Format::s_uiTagPointCount) {
            CheckCount(entry, bSecond);
        } else if (uiTag >= Format::s_uiTagBoxMinX && uiTag <= Format::s_uiTagInstrumentHeight) {
            CheckValue(entry, bSecond);
        } else {
            Report(RuleT::UnknownTag, entry, [&] {
                return TextsC{"a tag of the format", fmt::format("tag {}, which readers skip", uiTag)};
            });
        }
    }

    void CheckWhole(const ScanHeaderC& header)
    {
        if (m_anTags[Format::s_uiTagPosition] == 0) {
            ReportBlock(RuleT::NoPosition, fmt::format("an entry with tag {}", Format::s_uiTagPosition),
                        "none; readers take three doubles");
        }
        if (header.FindElement(SIO::PD_INTENSITY) == nullptr) {
            ReportBlock(RuleT::NoIntensity,
                        fmt::format("an entry with tag {} and type 4, 5 or 8", Format::s_uiTagIntensity),
                        "none");
        }
        if (header.ullElements > SIO::s_nMaxPointElements) {
            ReportBlock(RuleT::TooManyElements, fmt::format("up to {} elements", SIO::s_nMaxPointElements),
                        fmt::format("{}", header.ullElements));
        }
        if (!header.HasRecord()) return;
        CheckNumberOfPoints(header);
        const std::uint64_t ullRemainder = header.ullDataBytes % header.ullRecordBytes;
        if (ullRemainder != 0) {
            ReportBlock(
                RuleT::DataRemainder,
                fmt::format("a multiple of {} bytes, the size of a stored point", header.ullRecordBytes),
                fmt::format("{} bytes of data, the last {} of which are never read", header.ullDataBytes,
                            ullRemainder));
        }
    }

private:
    void CheckPosition(const QsbHeaderEntryC& entry, bool bSecond)
    {
        if (bSecond) {
            Report(RuleT::SecondElement, entry, [&] {
                return TextsC{"one entry for the positions", "a further one, which readers ignore"};
            });
            return;
        }
        if (SIO::PointDefinitionC::CanCreateElement(SIO::PD_POSITION, entry.GetType())) {
            CheckElementValue(entry, SIO::PD_POSITION);
        } else {
            Report(RuleT::PositionType, entry, [&] {
                return TextsC{"type 40 or 41", fmt::format("type {}", entry.GetType())};
            });
        }
    }

    void CheckElement(const QsbHeaderEntryC& entry)
    {
        const std::uint32_t uiKind = SIO::KindOfTag(entry.GetTag());
        if (!SIO::PointDefinitionC::CanCreateElement(uiKind, entry.GetType())) {
            Report(RuleT::ElementType, entry, [&] {
                return TextsC{
                    fmt::format("a type that {} can have", NameOfKind(uiKind)),
                    fmt::format(
                        "type {}; readers leave the element out, and take the bytes of the others from the "
                        "wrong places if it has any",
                        entry.GetType())};
            });
            return;
        }
        CheckElementValue(entry, uiKind);
        if (m_anElements[entry.GetTag() - Format::s_uiTagPosition]++ == 0) return;
        Report(RuleT::SecondElement, entry, [&] {
            return TextsC{fmt::format("one entry for {}", NameOfKind(uiKind)),
                          "a further one; both take bytes in every point, and the last one counts"};
        });
    }

    void CheckElementValue(const QsbHeaderEntryC& entry, std::uint32_t uiKind)
    {
        const std::size_t nBytes =
            SIO::PointDefinitionC::CreateElement(uiKind, entry.GetType(), false)->GetSizeInBytes();
        if (entry.AsUInt32() != nBytes) {
            Report(RuleT::ElementSize, entry, [&] {
                return TextsC{fmt::format("{} bytes", nBytes),
                              fmt::format("{}, which readers ignore", entry.AsUInt32())};
            });
        }
        CheckReserved(entry, HasBitsBehindUInt32(entry));
    }

    /// The entry that counts the points, which only a counted block heeds, and there the first one.
    void CheckCount(const QsbHeaderEntryC& entry, bool bSecond)
    {
        if (m_rPlace.rBlock.GetId() != Format::s_uiCountedPointCloudId) {
            Report(RuleT::CountIgnored, entry, [&] {
                return TextsC{"a number of points in blocks with identifier 3 only",
                              fmt::format("one in a block with identifier {}, which readers ignore",
                                          m_rPlace.rBlock.GetId())};
            });
            return;
        }
        if (bSecond) {
            Report(RuleT::SecondValue, entry, [&] {
                return TextsC{"one number of points", "a further one; the first one counts"};
            });
            return;
        }
        switch (entry.GetType()) {
        case Format::s_uiTypeByte:
            CheckReserved(entry, HasBitsBehindByte(entry));
            break;
        case Format::s_uiType32Bit:
        case Format::s_uiTypeUInt32:
            CheckReserved(entry, HasBitsBehindUInt32(entry));
            break;
        case Format::s_uiType64Bit:
            break;
        default:
            Report(RuleT::CountType, entry, [&] {
                return TextsC{"type 1, 6, 7 or 9",
                              fmt::format("type {}; readers find no points", entry.GetType())};
            });
        }
    }

    void CheckValue(const QsbHeaderEntryC& entry, bool bSecond)
    {
        const std::uint32_t uiTag = entry.GetTag();
        if (bSecond) {
            Report(RuleT::SecondValue, entry, [&] {
                return TextsC{fmt::format("one entry with tag {}", uiTag),
                              "a further one; the last one counts"};
            });
        }
        const bool bGrid = uiTag == Format::s_uiTagGrid0 || uiTag == Format::s_uiTagGrid1;
        CheckType(entry, bGrid ? Format::s_uiTypeUInt32 : Format::s_uiType64Bit);
        if (bGrid) CheckReserved(entry, HasBitsBehindUInt32(entry));
    }

    void CheckNumberOfPoints(const ScanHeaderC& header)
    {
        if (header.GetPoints() == 0) ReportBlock(RuleT::NoPoints, "points", "none");
        if (!header.oStatedPoints || *header.oStatedPoints == header.GetRoom()) return;
        const QsbHeaderEntryC& entry = *m_rPlace.rBlock.FindEntry(Format::s_uiTagPointCount);
        const std::string found = fmt::format("{} stated", *header.oStatedPoints);
        if (*header.oStatedPoints > header.GetRoom()) {
            Report(RuleT::CountTooLarge, entry, [&] {
                return TextsC{fmt::format("at most {} points, {} bytes of {} each", header.GetRoom(),
                                          header.ullDataBytes, header.ullRecordBytes),
                              found, fmt::format("{} points, which readers refuse", header.GetHeld())};
            });
        } else {
            Report(RuleT::CountSmaller, entry, [&] {
                return TextsC{fmt::format("{} points, as many as the data hold", header.GetRoom()), found};
            });
        }
    }

    void CheckType(const QsbHeaderEntryC& entry, std::uint32_t uiWritten)
    {
        if (entry.GetType() == uiWritten) return;
        Report(RuleT::EntryType, entry, [&] {
            return TextsC{fmt::format("type {} for tag {}", uiWritten, entry.GetTag()),
                          fmt::format("type {}, which readers ignore", entry.GetType())};
        });
    }

    void CheckReserved(const QsbHeaderEntryC& entry, bool bBits)
    {
        if (!bBits) return;
        Report(RuleT::ReservedBytes, entry, [&] {
            return TextsC{"zeros behind the value",
                          fmt::format("{:#018x} as the whole of it", entry.AsUInt64())};
        });
    }

    /// A file may have millions of such findings, so texts are made for those that are kept.
    template<typename MakeTextsT>
    void Report(RuleT eRule, const QsbHeaderEntryC& entry, const MakeTextsT& makeTexts)
    {
        m_rFindings.AddMade(eRule, m_rPlace.MostSevere(), [&] {
            TextsC texts = makeTexts();
            return FindingC{.oOffset = m_rPlace.OffsetOf(entry),
                            .oBlock = m_rPlace.ullIndex,
                            .strExpected = std::move(texts.strExpected),
                            .strFound = std::move(texts.strFound),
                            .strReadable = std::move(texts.strReadable)};
        });
    }

    void ReportBlock(RuleT eRule, const std::string& expected, const std::string& found)
    {
        m_rFindings.Add({.eRule = eRule,
                         .eSeverity = m_rPlace.MostSevere(),
                         .oOffset = m_rPlace.rBlock.GetOffset(),
                         .oBlock = m_rPlace.ullIndex,
                         .strExpected = expected,
                         .strFound = found});
    }

    const BlockPlaceC& m_rPlace;
    FindingListC& m_rFindings;
    std::array<std::uint32_t, Format::s_uiTagColor + 1> m_anTags{};
    std::array<std::uint32_t, 5> m_anElements{}; ///< by tag from 100, those of a known encoding
};

} // namespace

void CheckFileHeader(const BlockPlaceC& place, FindingListC& findings)
{
    const QsbHeaderEntryC* version = place.rBlock.FindEntry(Format::s_uiTagVersion);
    if (version != nullptr) {
        EntryCheckC(place, findings).CheckVersion(*version);
    } else if (place.bHeaderWhole) {
        const bool bUnfinished = place.rBlock.GetEntryCount() == 0;
        findings.Add({.eRule = RuleT::NoVersion,
                      .oOffset = place.rBlock.GetOffset(),
                      .oBlock = place.ullIndex,
                      .strExpected = fmt::format("an entry with tag {}", Format::s_uiTagVersion),
                      .strFound = bUnfinished
                                      ? "an empty header; the program that wrote the file did not finish it"
                                      : "none",
                      .strReadable = "the blocks may be whole; readers refuse the file"});
    }
    if (place.rBlock.GetEntryCount() > 1 || place.rBlock.GetDataBytes() != 0) {
        findings.Add({.eRule = RuleT::FileHeaderContent,
                      .oOffset = place.rBlock.GetOffset(),
                      .oBlock = place.ullIndex,
                      .strExpected = "one entry and no data",
                      .strFound = fmt::format("{} entries and {} bytes of data", place.rBlock.GetEntryCount(),
                                              place.rBlock.GetDataBytes())});
    }
}

void CheckPointCloudEntries(const BlockPlaceC& place, const ScanHeaderC& header, FindingListC& findings)
{
    EntryCheckC check(place, findings);
    for (const QsbHeaderEntryC& entry : place.rBlock)
        check.CheckPointCloudEntry(entry);
    if (place.bHeaderWhole) check.CheckWhole(header);
}

} // namespace Tool
