// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Results to stdout. A result that does not arrive, on a full disk for example, is a failure and told as one.
#include "Tools/Qsb/Tool_Json.h"

#include "Tools/Qsb/Tool_Error.h"

#include <cstdio>

namespace Tool {

namespace {

constexpr int s_iSchemaVersion = 1;
constexpr int s_iIndent = 2;

} // namespace

JsonT NewJsonDocument(std::string_view verb)
{
    JsonT document;
    document["schema_version"] = s_iSchemaVersion;
    document["command"] = verb;
    return document;
}

void PrintJson(const JsonT& document)
{
    PrintResult(document.dump(s_iIndent, ' ', false, JsonT::error_handler_t::replace) + "\n");
}

void PrintResult(std::string_view text)
{
    const bool bWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !bWritten)
        throw ToolErrorC(s_iFailed, "the result cannot be written to stdout");
}

} // namespace Tool
