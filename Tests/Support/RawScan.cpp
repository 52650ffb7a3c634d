// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Numbers are put together byte by byte, independent of the code under test.
#include "Support/RawScan.h"

#include "Support/ScanFolder.h"

#include <algorithm>
#include <bit>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Support {

namespace {

std::size_t SizeOf(const std::string& type)
{
    if (type == "f64") return 8;
    if (type == "f32" || type == "u32") return 4;
    if (type == "u16") return 2;
    if (type == "u8") return 1;
    throw std::runtime_error("field type " + type);
}

} // namespace

const RawField* RawScan::Find(const std::string& name) const
{
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const RawField& f) { return f.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

double RawScan::Value(std::uint32_t point, const RawField& field) const
{
    const std::uint64_t bits = NumberAt(records, point * recordBytes + field.offset, SizeOf(field.type));
    if (field.type == "f64") return std::bit_cast<double>(bits);
    if (field.type == "f32") return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    return static_cast<double>(bits);
}

RawScan ReadRawScan(const std::string& path)
{
    const BytesT text = ReadFile(path + ".json");
    const auto json = nlohmann::json::parse(text.begin(), text.end());
    RawScan scan;
    scan.points = json.at("points");
    scan.recordBytes = json.at("record_size");
    if (!json.at("pose").is_null()) scan.pose = json.at("pose").get<std::vector<double>>();
    if (!json.at("grid").is_null()) scan.grid = json.at("grid").get<std::vector<std::uint32_t>>();
    std::size_t offset = 0;
    for (const auto& field : json.at("fields")) {
        scan.fields.push_back({field.at("name"), field.at("type"), offset});
        offset += SizeOf(scan.fields.back().type);
    }
    scan.records = ReadFile(path + ".bin");
    if (offset != scan.recordBytes || scan.records.size() != scan.points * scan.recordBytes) {
        throw std::runtime_error(path + ": header and records do not fit");
    }
    return scan;
}

} // namespace Support
