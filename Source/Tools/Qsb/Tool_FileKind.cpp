// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Ends of names.
#include "Tools/Qsb/Tool_FileKind.h"

#include <boost/algorithm/string/predicate.hpp>
#include <locale>

namespace Tool {

FileKindT FileKindOf(const std::string& path)
{
    const auto endsWith = [&](const char* end) {
        return boost::algorithm::iends_with(path, end, std::locale::classic());
    };
    if (endsWith(".ply")) return FileKindT::Ply;
    if (endsWith(".csv")) return FileKindT::Csv;
    return endsWith(".json") || endsWith(".bin") ? FileKindT::Raw : FileKindT::Unknown;
}

} // namespace Tool
