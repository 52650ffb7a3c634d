// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One row per value: the names it goes by, the most telling first.
#include "Tools/Qsb/Tool_FieldNames.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Tool {

namespace {

using NamesT = std::array<std::string_view, 8>;

// In the order of ScanValueT.
constexpr std::array<NamesT, s_nScanValues> s_aNames = {{
    {"x"},
    {"y"},
    {"z"},
    {"intensity", "intensities", "reflectance", "reflectivity", "remission", "amplitude", "quality"},
    {"noise", "level_of_noise", "levelofnoise", "noise_level", "noise_ratio"},
    {"red", "diffuse_red", "r"},
    {"green", "diffuse_green", "g"},
    {"blue", "diffuse_blue", "b"},
    {"row", "row_index", "rowindex"},
    {"col", "column", "column_index", "columnindex", "col_index"},
}};

std::string Normalised(std::string_view name)
{
    constexpr std::string_view prefix = "scalar_";
    std::string text(name);
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    if (text.size() > prefix.size() && text.compare(0, prefix.size(), prefix) == 0)
        text.erase(0, prefix.size());
    return text;
}

std::optional<std::size_t> Find(const std::vector<std::string>& fields, const NamesT& names)
{
    for (const std::string_view name : names) {
        const auto found = std::find(fields.begin(), fields.end(), name);
        if (!name.empty() && found != fields.end()) return static_cast<std::size_t>(found - fields.begin());
    }
    return std::nullopt;
}

} // namespace

FieldMapT MapFields(const std::vector<SourceFieldC>& fields)
{
    std::vector<std::string> names;
    for (const SourceFieldC& field : fields)
        names.push_back(Normalised(field.strName));
    FieldMapT map;
    for (std::size_t i = 0; i < s_nScanValues; ++i)
        map[i] = Find(names, s_aNames[i]);
    return map;
}

std::optional<ScanValueT> ValueNamed(const std::string& field)
{
    const std::vector<std::string> name = {Normalised(field)};
    for (std::size_t i = 0; i < s_nScanValues; ++i) {
        if (Find(name, s_aNames[i])) return static_cast<ScanValueT>(i);
    }
    return std::nullopt;
}

} // namespace Tool
