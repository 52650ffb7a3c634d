// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The header, key by key. Size, depth and number of fields are bounded before anything is built from them.
#include "Tools/Qsb/Tool_RawHeader.h"

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Json.h"
#include "Tools/Qsb/Tool_Printable.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <cmath>
#include <fmt/format.h>
#include <set>

namespace Tool {

namespace {

using nlohmann::json;

constexpr std::uint64_t s_ullMaxHeaderBytes = 1 << 20;
constexpr int s_iMaxDepth = 16;
constexpr std::size_t s_nMaxFields = 1000;
constexpr std::uint64_t s_ullMaxCount = std::uint64_t{1}
                                        << 53; ///< whole numbers beyond are not exact in JSON
constexpr std::uint64_t s_ullMaxGrid = std::uint64_t{1} << 32;

/// The keys that mean something; every other one is a remark.
constexpr std::array<std::string_view, 8> s_astrKeys = {"name", "points", "record_size", "byte_order",
                                                        "pose", "grid",   "fields",      "instrument_height"};

class HeaderReaderC
{
public:
    explicit HeaderReaderC(const NamedInputC& input)
        : m_strName(input.strName), m_oRoot(Parse(*input.poInput))
    {}

    RawHeaderC Read() const
    {
        if (!m_oRoot.is_object()) Fail("is no JSON object");
        if (const json* order = Find("byte_order"); order != nullptr && *order != "little") {
            Fail("\"byte_order\" must be \"little\"");
        }
        RawHeaderC header;
        header.ullPoints = Count(Need("points"), "\"points\"", s_ullMaxCount);
        ReadFields(header);
        CheckRecordSize(header);
        ReadPose(header.oScan);
        ReadGrid(header.oScan);
        if (const json* height = Find("instrument_height")) {
            header.oScan.oInstrumentHeight = Number(*height, "\"instrument_height\"");
        }
        ReadExtras(header);
        return header;
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const
    {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: {}", m_strName, reason));
    }

    json Parse(ScanInputI& input) const
    {
        if (input.GetSize() > s_ullMaxHeaderBytes) {
            Fail(fmt::format("is no header of the raw form: more than {} bytes", s_ullMaxHeaderBytes));
        }
        std::string text(static_cast<std::size_t>(input.GetSize()), '\0');
        text.resize(input.ReadAt(0, text.data(), text.size()));
        std::set<std::string> keys;
        const auto check = [&](int iDepth, json::parse_event_t eEvent, json& value) {
            if (iDepth > s_iMaxDepth) Fail(fmt::format("nested more than {} deep", s_iMaxDepth));
            if (eEvent == json::parse_event_t::key && iDepth == 1 &&
                !keys.insert(value.get<std::string>()).second) {
                Fail(fmt::format("\"{}\" stands twice", Printable(value.get<std::string>())));
            }
            return true;
        };
        try {
            return json::parse(text, check);
        } catch (const json::exception& error) {
            // The library's text begins with a tag of its own in brackets.
            const std::string what = error.what();
            Fail(what.substr(std::min(what.find("] ") + 2, what.size())));
        }
    }

    /// The value of a key; null when it is not there or is null.
    const json* Find(const char* key) const
    {
        const auto found = m_oRoot.find(key);
        return found == m_oRoot.end() || found->is_null() ? nullptr : &*found;
    }

    const json& Need(const char* key) const
    {
        const json* value = Find(key);
        if (value == nullptr) Fail(fmt::format("\"{}\" is missing", key));
        return *value;
    }

    std::uint64_t Count(const json& value, const std::string& what, std::uint64_t ullMax) const
    {
        if (!value.is_number_unsigned() || value.get<std::uint64_t>() > ullMax) {
            Fail(fmt::format("{} must be a whole number from 0 to {}", what, ullMax));
        }
        return value.get<std::uint64_t>();
    }

    double Number(const json& value, const std::string& what) const
    {
        if (!value.is_number() || !std::isfinite(value.get<double>()))
            Fail(fmt::format("{} must be a number", what));
        return value.get<double>();
    }

    void ReadFields(RawHeaderC& header) const
    {
        const json& fields = Need("fields");
        if (!fields.is_array() || fields.empty() || fields.size() > s_nMaxFields) {
            Fail(fmt::format("\"fields\" must be a list of 1 to {} fields", s_nMaxFields));
        }
        std::set<std::string> names;
        for (const json& field : fields) {
            header.vecFields.push_back(Field(field, header.vecFields.size()));
            if (!names.insert(header.vecFields.back().strName).second) {
                Fail(fmt::format("field \"{}\" stands twice", Printable(header.vecFields.back().strName)));
            }
        }
    }

    SourceFieldC Field(const json& field, std::size_t nIndex) const
    {
        const auto text = [&](const char* key) {
            if (!field.is_object() || !field.contains(key) || !field[key].is_string() || field[key] == "") {
                Fail(fmt::format("field {} must have a \"{}\" that is text", nIndex, key));
            }
            return field[key].get<std::string>();
        };
        const std::string name = text("name");
        const std::string type = text("type");
        const auto oType = TypeOfShortName(type);
        if (!oType) {
            Fail(fmt::format(
                "field \"{}\" has the type \"{}\"; types are i8, u8, i16, u16, i32, u32, f32, f64",
                Printable(name), Printable(type)));
        }
        return {name, *oType};
    }

    void CheckRecordSize(const RawHeaderC& header) const
    {
        const json* size = Find("record_size");
        if (size != nullptr && Count(*size, "\"record_size\"", s_ullMaxCount) != header.GetRecordBytes()) {
            Fail(fmt::format("\"record_size\" is {}, but the fields take {} bytes",
                             size->get<std::uint64_t>(), header.GetRecordBytes()));
        }
    }

    void ReadPose(ScanFrameC& scan) const
    {
        const json* pose = Find("pose");
        if (pose == nullptr) return;
        if (!pose->is_array() || pose->size() != 16) Fail("\"pose\" must be null or 16 numbers, row by row");
        scan.oPose.emplace();
        for (std::size_t i = 0; i < 16; ++i)
            (*scan.oPose)[i] = Number((*pose)[i], fmt::format("\"pose\"[{}]", i));
    }

    void ReadGrid(ScanFrameC& scan) const
    {
        const json* grid = Find("grid");
        if (grid == nullptr) return;
        if (!grid->is_array() || grid->size() != 2) Fail("\"grid\" must be null or [rows, columns]");
        scan.oGrid.emplace();
        for (std::size_t i = 0; i < 2; ++i) {
            (*scan.oGrid)[i] = Count((*grid)[i], fmt::format("\"grid\"[{}]", i), s_ullMaxGrid);
            if ((*scan.oGrid)[i] == 0) Fail("\"grid\" must have at least one row and one column");
        }
    }

    void ReadExtras(RawHeaderC& header) const
    {
        for (const auto& [key, value] : m_oRoot.items()) {
            const bool bKnown = std::find(s_astrKeys.begin(), s_astrKeys.end(), key) != s_astrKeys.end();
            if (!bKnown && !value.is_null())
                header.vecExtras.push_back({fmt::format("key {}", Printable(key)), false});
        }
    }

    std::string m_strName;
    json m_oRoot;
};

template<typename T>
JsonT OrNull(const std::optional<T>& oValue)
{
    return oValue ? JsonT(*oValue) : JsonT();
}

std::string Text(const RawHeaderC& header, const std::string& name, bool bRecords)
{
    JsonT root;
    root["name"] = name;
    root["points"] = header.ullPoints;
    if (bRecords) root["record_size"] = header.GetRecordBytes();
    if (bRecords) root["byte_order"] = "little";
    root["pose"] = OrNull(header.oScan.oPose);
    if (header.oScan.oAppliedPose) root["applied_pose"] = *header.oScan.oAppliedPose;
    root["grid"] = OrNull(header.oScan.oGrid);
    root["instrument_height"] = OrNull(header.oScan.oInstrumentHeight);
    root["fields"] = JsonT::array();
    for (const SourceFieldC& field : header.vecFields) {
        JsonT row;
        row["name"] = field.strName;
        row["type"] = ShortName(field.eType);
        root["fields"].push_back(row);
    }
    return root.dump(1, ' ', false, JsonT::error_handler_t::replace) + "\n";
}

} // namespace

std::size_t RawHeaderC::GetRecordBytes() const noexcept
{
    std::size_t nBytes = 0;
    for (const SourceFieldC& field : vecFields)
        nBytes += SizeOf(field.eType);
    return nBytes;
}

RawHeaderC ReadRawHeader(const NamedInputC& input)
{
    return HeaderReaderC(input).Read();
}

std::string RawHeaderText(const RawHeaderC& header, const std::string& name)
{
    return Text(header, name, true);
}

std::string SidecarText(const RawHeaderC& header, const std::string& name)
{
    return Text(header, name, false);
}

std::pair<std::string, std::string> RawPaths(const std::string& path)
{
    const auto endsWith = [&](std::string_view extension) {
        return path.size() > extension.size() &&
               boost::algorithm::to_lower_copy(path.substr(path.size() - extension.size())) == extension;
    };
    if (endsWith(".json")) return {path, path.substr(0, path.size() - 5) + ".bin"};
    if (endsWith(".bin")) return {path.substr(0, path.size() - 4) + ".json", path};
    return {path + ".json", path + ".bin"};
}

} // namespace Tool
