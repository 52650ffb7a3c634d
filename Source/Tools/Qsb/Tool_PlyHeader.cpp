// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The header, line by line.
#include "Tools/Qsb/Tool_PlyHeader.h"

#include "Tools/Qsb/Tool_Numerals.h"
#include "Tools/Qsb/Tool_Printable.h"
#include "Tools/Qsb/Tool_TextInput.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Tool {

namespace {

constexpr std::size_t s_nMaxElements = 100;
constexpr std::size_t s_nMaxProperties = 1000;
constexpr std::uint64_t s_ullMaxHeaderBytes = std::uint64_t{1} << 20;
constexpr std::uint64_t s_ullMaxCount = std::uint64_t{1} << 53;
constexpr std::uint64_t s_ullMaxGrid = std::uint64_t{1} << 32;

using WordsT = std::vector<std::string_view>;

WordsT Split(std::string_view line)
{
    WordsT words;
    while (true) {
        const std::size_t nBegin = line.find_first_not_of(" \t");
        if (nBegin == std::string_view::npos) return words;
        line.remove_prefix(nBegin);
        const std::size_t nEnd = std::min(line.find_first_of(" \t"), line.size());
        words.push_back(line.substr(0, nEnd));
        line.remove_prefix(nEnd);
    }
}

class HeaderReaderC
{
public:
    explicit HeaderReaderC(TextInputC& input) : m_oInput(input) {}

    PlyHeaderC Read()
    {
        std::string line;
        if (!NextLine(line) || line != "ply") Fail("is no PLY file: the first line is not \"ply\"");
        while (NextLine(line)) {
            const WordsT words = Split(line);
            if (words.empty()) continue;
            if (words[0] == "end_header") {
                Finish();
                return std::move(m_oHeader);
            }
            Take(words);
        }
        Fail("the file ends before \"end_header\"");
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const { m_oInput.FailAtLine(m_ullLine, reason); }

    bool NextLine(std::string& line)
    {
        const TextInputC::PlaceT place = m_oInput.GetPlace();
        m_ullLine = place.ullLine;
        if (place.ullOffset > s_ullMaxHeaderBytes) {
            Fail(fmt::format("the header takes more than {} bytes", s_ullMaxHeaderBytes));
        }
        return m_oInput.ReadLine(line);
    }

    void Take(const WordsT& words)
    {
        if (words[0] == "format") {
            TakeFormat(words);
        } else if (words[0] == "element") {
            TakeElement(words);
        } else if (words[0] == "property") {
            TakeProperty(words);
        } else if (words[0] == "comment" || words[0] == "obj_info") {
            TakeComment(words);
        } else {
            Fail(fmt::format("\"{}\" is no header line", Printable(words[0])));
        }
    }

    void TakeFormat(const WordsT& words)
    {
        if (m_bFormat) Fail("a second \"format\"");
        if (words.size() != 3 || words[2] != "1.0") Fail("must be \"format\", one of the formats, \"1.0\"");
        m_bFormat = true;
        if (words[1] == "ascii") {
            m_oHeader.eFormat = PlyFormatT::Ascii;
        } else if (words[1] == "binary_little_endian") {
            m_oHeader.eFormat = PlyFormatT::LittleEndian;
        } else if (words[1] == "binary_big_endian") {
            m_oHeader.eFormat = PlyFormatT::BigEndian;
        } else {
            Fail(fmt::format("\"{}\" is none of ascii, binary_little_endian, binary_big_endian",
                             Printable(words[1])));
        }
    }

    void TakeElement(const WordsT& words)
    {
        const auto oCount = words.size() == 3 ? ParseCount(words[2]) : std::nullopt;
        if (!oCount || *oCount > s_ullMaxCount) {
            Fail(fmt::format("must be \"element\", a name, a number up to {}", s_ullMaxCount));
        }
        for (const PlyElementC& element : m_oHeader.vecElements) {
            if (element.strName == words[1])
                Fail(fmt::format("a second element \"{}\"", Printable(words[1])));
        }
        if (m_oHeader.vecElements.size() == s_nMaxElements)
            Fail(fmt::format("more than {} elements", s_nMaxElements));
        m_oHeader.vecElements.push_back({std::string(words[1]), *oCount, {}});
    }

    NumberTypeT Type(std::string_view name) const
    {
        const auto oType = TypeOfPlyName(name);
        if (!oType) {
            Fail(fmt::format(
                "\"{}\" is no type; types are char, uchar, short, ushort, int, uint, float, double",
                Printable(name)));
        }
        return *oType;
    }

    void TakeProperty(const WordsT& words)
    {
        if (m_oHeader.vecElements.empty()) Fail("a property before the first element");
        auto& properties = m_oHeader.vecElements.back().vecProperties;
        if (properties.size() == s_nMaxProperties)
            Fail(fmt::format("more than {} properties", s_nMaxProperties));
        PlyPropertyC property;
        if (words.size() == 5 && words[1] == "list") {
            property = {std::string(words[4]), Type(words[3]), Type(words[2])};
            if (IsFloating(*property.oListCount)) Fail("the length of a list must be an integer");
        } else if (words.size() == 3) {
            property = {std::string(words[2]), Type(words[1]), std::nullopt};
        } else {
            Fail("must be \"property\", a type, a name, or \"property list\", two types, a name");
        }
        for (const PlyPropertyC& other : properties) {
            if (other.strName == property.strName) {
                Fail(fmt::format("a second property \"{}\" of one element", Printable(property.strName)));
            }
        }
        properties.push_back(std::move(property));
    }

    void TakeComment(const WordsT& words)
    {
        if (words.size() < 3 || words[0] != "comment" || words[1] != "qsb") {
            ++m_oHeader.ullRemarks;
        } else if (words[2] == "pose") {
            if (m_oHeader.oScan.oPose) Fail("a second pose");
            m_oHeader.oScan.oPose = Numbers<16>(words);
        } else if (words[2] == "grid") {
            if (m_oHeader.oScan.oGrid) Fail("a second grid");
            TakeGrid(words);
        } else if (words[2] == "instrument_height") {
            if (m_oHeader.oScan.oInstrumentHeight) Fail("a second instrument height");
            m_oHeader.oScan.oInstrumentHeight = Numbers<1>(words)[0];
        } else {
            ++m_oHeader.ullRemarks;
        }
    }

    /// The finite numbers that follow "comment qsb" and one word more.
    template<std::size_t nCount>
    std::array<double, nCount> Numbers(const WordsT& words) const
    {
        std::array<double, nCount> numbers{};
        const std::string expected =
            fmt::format("\"{}\" must be followed by {} finite numbers", words[2], nCount);
        if (words.size() != 3 + nCount) Fail(expected);
        for (std::size_t i = 0; i < nCount; ++i) {
            const auto oNumber = ParseNumber(words[3 + i], NumberTypeT::Double);
            if (!oNumber || !std::isfinite(*oNumber)) Fail(expected);
            numbers[i] = *oNumber;
        }
        return numbers;
    }

    void TakeGrid(const WordsT& words)
    {
        const auto oRows = words.size() == 5 ? ParseCount(words[3]) : std::nullopt;
        const auto oColumns = words.size() == 5 ? ParseCount(words[4]) : std::nullopt;
        const auto fits = [](const std::optional<std::uint64_t>& oSize) {
            return oSize && *oSize >= 1 && *oSize <= s_ullMaxGrid;
        };
        if (!fits(oRows) || !fits(oColumns)) {
            Fail(fmt::format("\"grid\" must be followed by rows and columns, 1 to {} each", s_ullMaxGrid));
        }
        m_oHeader.oScan.oGrid = {{*oRows, *oColumns}};
    }

    void Finish() const
    {
        if (!m_bFormat) Fail("the header has no \"format\"");
    }

    TextInputC& m_oInput;
    PlyHeaderC m_oHeader;
    bool m_bFormat = false;
    std::uint64_t m_ullLine = 1; ///< of the line that was read last
};

void AppendComment(std::string& text, std::string_view key, const double* pdNumbers, std::size_t nCount)
{
    text.append("comment qsb ").append(key);
    for (std::size_t i = 0; i < nCount; ++i) {
        text += ' ';
        AppendNumber(text, pdNumbers[i], NumberTypeT::Double);
    }
    text += '\n';
}

} // namespace

bool PlyElementC::HasLists() const noexcept
{
    return std::any_of(vecProperties.begin(), vecProperties.end(),
                       [](const PlyPropertyC& property) { return property.oListCount.has_value(); });
}

std::uint64_t PlyElementC::GetLeastBytes() const noexcept
{
    std::uint64_t ullBytes = 0;
    for (const PlyPropertyC& property : vecProperties)
        ullBytes += SizeOf(property.oListCount.value_or(property.eType));
    return ullBytes;
}

PlyHeaderC ReadPlyHeader(TextInputC& input)
{
    return HeaderReaderC(input).Read();
}

std::string PlyScanComments(const ScanFrameC& scan)
{
    std::string text;
    if (scan.oPose) AppendComment(text, "pose", scan.oPose->data(), 16);
    if (scan.oAppliedPose) AppendComment(text, "applied_pose", scan.oAppliedPose->data(), 16);
    if (scan.oGrid) text += fmt::format("comment qsb grid {} {}\n", (*scan.oGrid)[0], (*scan.oGrid)[1]);
    if (scan.oInstrumentHeight) AppendComment(text, "instrument_height", &*scan.oInstrumentHeight, 1);
    return text;
}

} // namespace Tool
