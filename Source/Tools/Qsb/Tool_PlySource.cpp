// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The vertices of a PLY file. In a binary file whose vertices have no lists they are records of fixed size;
// otherwise values are read one by one. Elements before the vertices are passed over, those behind them are
// not looked at.
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Numerals.h"
#include "Tools/Qsb/Tool_PlyHeader.h"
#include "Tools/Qsb/Tool_Printable.h"
#include "Tools/Qsb/Tool_RecordReader.h"
#include "Tools/Qsb/Tool_ScanInput.h"
#include "Tools/Qsb/Tool_TextInput.h"

#include <algorithm>
#include <fmt/format.h>

namespace Tool {

namespace {

/// The values of a PLY file one after another. In ascii a record is a line; one with a value too few or too
/// many would shift all that follow, so it is refused.
class ValueReaderC
{
public:
    ValueReaderC(TextInputC& input, PlyFormatT eFormat) : m_oInput(input), m_eFormat(eFormat) {}

    void BeginRecord() noexcept { m_bFirstWord = true; }

    void EndRecord()
    {
        if (m_eFormat != PlyFormatT::Ascii || m_bFirstWord) return;
        if (!m_oInput.ReadWordInLine().empty())
            m_oInput.FailAtLine("more values than the element has properties");
    }

    double Next(NumberTypeT eType)
    {
        if (m_eFormat == PlyFormatT::Ascii) return NextWord(eType);
        char acBytes[sizeof(double)];
        m_oInput.ReadBytes(acBytes, SizeOf(eType));
        double dValue = 0.0;
        LoadNumbers(eType, m_eFormat == PlyFormatT::BigEndian, acBytes, 0, 1, &dValue);
        return dValue;
    }

    void Skip(NumberTypeT eType, std::uint64_t ullCount)
    {
        if (m_eFormat != PlyFormatT::Ascii) {
            m_oInput.SkipBytes(ullCount * SizeOf(eType));
            return;
        }
        for (; ullCount != 0; --ullCount)
            (void)Word();
    }

    void SkipList(const PlyPropertyC& property)
    {
        const double dLength = Next(*property.oListCount);
        if (dLength < 0) m_oInput.FailAtByte("the length of a list is negative");
        Skip(property.eType, static_cast<std::uint64_t>(dLength));
    }

private:
    std::string_view Word()
    {
        const std::string_view word = m_bFirstWord ? m_oInput.ReadWord() : m_oInput.ReadWordInLine();
        if (word.empty() && m_oInput.GetBytesLeft() == 0)
            m_oInput.FailAtLine("the file ends in the middle of the data");
        if (word.empty()) m_oInput.FailAtLine("fewer values than the element has properties");
        m_bFirstWord = false;
        return word;
    }

    double NextWord(NumberTypeT eType)
    {
        const std::string_view word = Word();
        const auto oValue = ParseNumber(word, eType);
        if (!oValue) m_oInput.FailAtLine(fmt::format("\"{}\" is no {}", Printable(word), PlyName(eType)));
        return *oValue;
    }

    TextInputC& m_oInput;
    PlyFormatT m_eFormat;
    bool m_bFirstWord = true;
};

class PlySourceC final : public PointSourceI
{
public:
    explicit PlySourceC(NamedInputC input)
        : m_oFile(std::move(input)), m_oText(m_oFile), m_oHeader(ReadPlyHeader(m_oText)),
          m_oValues(m_oText, m_oHeader.eFormat)
    {
        FindVertices();
        NameFields();
        Select({});
    }

    const std::string& GetName() const override { return m_oFile.strName; }
    const std::vector<SourceFieldC>& GetFields() const override { return m_vecFields; }
    const ScanFrameC& GetHeader() const override { return m_oHeader.oScan; }
    const std::vector<SourceExtraC>& GetExtras() const override { return m_vecExtras; }
    std::uint64_t GetNumberOfPoints() const override { return m_poVertex->ullCount; }

    void Select(const std::vector<std::size_t>& fields) override
    {
        if (m_poRecords != nullptr) return m_poRecords->Select(fields);
        m_vecColumnOfField.assign(m_vecFields.size(), s_nNoColumn);
        for (std::size_t i = 0; i < fields.size(); ++i)
            m_vecColumnOfField[fields[i]] = i;
        m_nColumns = fields.size();
        m_ullRead = 0;
        m_oText.GoTo(m_oFirstVertex);
    }

    std::size_t Read(std::vector<std::vector<double>>& columns) override
    {
        if (m_poRecords != nullptr) return m_poRecords->Read(columns);
        const auto nCount =
            static_cast<std::size_t>(std::min<std::uint64_t>(s_nBatch, m_poVertex->ullCount - m_ullRead));
        columns.resize(m_nColumns);
        for (auto& column : columns)
            column.resize(nCount);
        for (std::size_t i = 0; i < nCount; ++i)
            ReadVertex(columns, i);
        m_ullRead += nCount;
        return nCount;
    }

private:
    static constexpr std::size_t s_nNoColumn = static_cast<std::size_t>(-1);

    bool IsAscii() const { return m_oHeader.eFormat == PlyFormatT::Ascii; }

    [[noreturn]] void Fail(const std::string& reason) const
    {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: {}", m_oFile.strName, reason));
    }

    /// Goes to the first vertex and notes where it is.
    void FindVertices()
    {
        for (const PlyElementC& element : m_oHeader.vecElements) {
            if (element.strName == "vertex") {
                m_poVertex = &element;
                m_oFirstVertex = m_oText.GetPlace();
                CheckRoom(element);
                continue;
            }
            if (m_poVertex == nullptr) SkipElement(element);
            m_vecExtras.push_back(
                {fmt::format("element {} ({})", Printable(element.strName), element.ullCount),
                 element.ullCount != 0});
        }
        if (m_poVertex == nullptr) Fail("has no element \"vertex\", so it has no points");
        if (m_oHeader.ullRemarks != 0)
            m_vecExtras.push_back({fmt::format("{} comments", m_oHeader.ullRemarks), false});
    }

    void SkipElement(const PlyElementC& element)
    {
        CheckRoom(element);
        // Records without a single property take no bytes, however many there are said to be.
        if (element.vecProperties.empty()) return;
        if (!IsAscii() && !element.HasLists())
            return m_oText.SkipBytes(element.ullCount * element.GetLeastBytes());
        for (std::uint64_t i = 0; i < element.ullCount; ++i) {
            if (i % s_nBatch == 0) StopIfInterrupted();
            m_oValues.BeginRecord();
            for (const PlyPropertyC& property : element.vecProperties)
                SkipValue(property);
            m_oValues.EndRecord();
        }
    }

    /// Refuses a count that the rest of the file has no room for, before anyone sets out to read so much.
    void CheckRoom(const PlyElementC& element) const
    {
        // A word and what ends it take two bytes; only the last word of a file can do without an end.
        const std::uint64_t ullRecord =
            IsAscii() ? 2 * element.vecProperties.size() : element.GetLeastBytes();
        const std::uint64_t ullLeft = m_oText.GetBytesLeft();
        if (ullRecord == 0 || element.ullCount <= (ullLeft + (IsAscii() ? 1 : 0)) / ullRecord) return;
        Fail(fmt::format("says that {} records of element {} begin at byte {}, but the {} bytes left there "
                         "hold {} at most",
                         element.ullCount, Printable(element.strName), m_oText.GetPlace().ullOffset, ullLeft,
                         ullLeft / ullRecord));
    }

    void SkipValue(const PlyPropertyC& property)
    {
        if (property.oListCount) return m_oValues.SkipList(property);
        m_oValues.Skip(property.eType, 1);
    }

    void NameFields()
    {
        for (const PlyPropertyC& property : m_poVertex->vecProperties) {
            if (property.oListCount) {
                m_vecExtras.push_back(
                    {fmt::format("list {}", Printable(property.strName)), m_poVertex->ullCount != 0});
            } else {
                m_vecFields.push_back({property.strName, property.eType});
            }
        }
        if (IsAscii() || m_poVertex->HasLists() || m_vecFields.empty()) return;
        m_poRecords =
            std::make_unique<RecordReaderC>(m_oFile, m_vecFields, m_oHeader.eFormat == PlyFormatT::BigEndian,
                                            m_oFirstVertex.ullOffset, m_poVertex->ullCount);
    }

    void ReadVertex(std::vector<std::vector<double>>& columns, std::size_t nPoint)
    {
        std::size_t nField = 0;
        m_oValues.BeginRecord();
        for (const PlyPropertyC& property : m_poVertex->vecProperties) {
            if (property.oListCount) {
                m_oValues.SkipList(property);
                continue;
            }
            const std::size_t nColumn = m_vecColumnOfField[nField++];
            if (nColumn == s_nNoColumn) {
                m_oValues.Skip(property.eType, 1);
            } else {
                columns[nColumn][nPoint] = m_oValues.Next(property.eType);
            }
        }
        m_oValues.EndRecord();
    }

    NamedInputC m_oFile;
    TextInputC m_oText;
    PlyHeaderC m_oHeader;
    ValueReaderC m_oValues;
    const PlyElementC* m_poVertex = nullptr;
    TextInputC::PlaceT m_oFirstVertex;
    std::vector<SourceFieldC> m_vecFields;
    std::vector<SourceExtraC> m_vecExtras;
    std::unique_ptr<RecordReaderC> m_poRecords; ///< null when values are read one by one
    std::vector<std::size_t> m_vecColumnOfField;
    std::size_t m_nColumns = 0;
    std::uint64_t m_ullRead = 0;
};

} // namespace

std::unique_ptr<PointSourceI> ReadPly(NamedInputC input)
{
    return std::make_unique<PlySourceC>(std::move(input));
}

} // namespace Tool
