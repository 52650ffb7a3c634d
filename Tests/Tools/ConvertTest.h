// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests of import and export share: sources made of text in memory, whole scans read at once, and
// the rows of a report by name.
#pragma once

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_PointSource.h"
#include "Tools/Qsb/Tool_ScanImport.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Support {

/// An input over `bytes`, which must stay.
inline Tool::NamedInputC InMemory(const std::string& name, const std::string& bytes)
{
    return {name, std::make_unique<Tool::MemoryInputC>(bytes.data(), bytes.size())};
}

/// Keeps a source's bytes together with it.
class SourceInMemory
{
public:
    static SourceInMemory Ply(const std::string& bytes) { return SourceInMemory(bytes); }
    static SourceInMemory Raw(const std::string& header, const std::string& data)
    {
        return SourceInMemory(header, data);
    }

    Tool::PointSourceI& operator*() const { return *m_poSource; }
    Tool::PointSourceI* operator->() const { return m_poSource.get(); }

    /// The values of all fields, field by field.
    std::vector<std::vector<double>> ReadAll() const
    {
        std::vector<std::size_t> fields(m_poSource->GetFields().size());
        for (std::size_t i = 0; i < fields.size(); ++i)
            fields[i] = i;
        m_poSource->Select(fields);
        std::vector<std::vector<double>> all(fields.size()), batch;
        while (m_poSource->Read(batch) != 0) {
            for (std::size_t i = 0; i < all.size(); ++i)
                all[i].insert(all[i].end(), batch[i].begin(), batch[i].end());
        }
        return all;
    }

private:
    explicit SourceInMemory(const std::string& bytes)
        : m_poBytes(std::make_unique<std::string>(bytes)),
          m_poSource(Tool::ReadPly(InMemory("a.ply", *m_poBytes)))
    {}

    SourceInMemory(const std::string& header, const std::string& data)
        : m_poBytes(std::make_unique<std::string>(data)),
          m_poSource(Tool::ReadRaw(InMemory("a.json", header), InMemory("a.bin", *m_poBytes)))
    {}

    std::unique_ptr<std::string> m_poBytes; ///< keeps its address when this moves
    std::unique_ptr<Tool::PointSourceI> m_poSource;
};

/// What an import made of a source.
struct ImportedT
{
    Tool::ScanFormatC oFormat;
    SIO::QsbScanInfoC oInfo;
    std::vector<Tool::ScanPointC> vecPoints;
    Tool::ConversionReportC oReport{"import", "in", "out"};

    /// The report's row for a part; one that is not there is an empty row and a failed test.
    Tool::ReportRowC Row(const std::string& what) const
    {
        for (const Tool::ReportRowC& row : oReport.GetRows()) {
            if (row.strWhat == what) return row;
        }
        ADD_FAILURE() << "no row " << what;
        return {};
    }
};

inline ImportedT Import(const SourceInMemory& source, const Tool::ImportChoicesC& choices = {})
{
    Tool::ScanImportC import(*source, choices, [](std::size_t) {});
    ImportedT imported;
    std::vector<Tool::ScanPointC> batch;
    for (import.Read(batch); !batch.empty(); import.Read(batch)) {
        imported.vecPoints.insert(imported.vecPoints.end(), batch.begin(), batch.end());
    }
    imported.oFormat = import.GetFormat();
    imported.oInfo = import.GetInfo();
    import.AddTo(imported.oReport);
    return imported;
}

/// Text as part of a test's name, which must not confuse the test runner.
inline void PrintAsName(const std::string& text, std::ostream* stream)
{
    for (const char c : text.substr(0, 50))
        *stream << (std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_');
}

/// The message that `action` fails with, as damage.
template<typename ActionT>
std::string DamageToldBy(ActionT action)
{
    try {
        action();
    } catch (const Tool::ToolErrorC& error) {
        EXPECT_EQ(error.GetExitCode(), Tool::s_iDamaged) << error.what();
        return error.what();
    }
    return "nothing";
}

} // namespace Support
