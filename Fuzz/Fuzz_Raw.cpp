// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Imports the input as the raw form: the header up to the first line that is a closing brace, the data behind
// it.
#include "Fuzz/Fuzz_Import.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::size_t s_nMaxBytes = 65536;
constexpr std::string_view s_strHeaderEnd = "\n}\n";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes > s_nMaxBytes) return -1;
    const std::string bytes(reinterpret_cast<const char*>(pBytes), nBytes);
    const std::size_t nFound = bytes.find(s_strHeaderEnd);
    const std::size_t nHeader = nFound == std::string::npos ? nBytes : nFound + s_strHeaderEnd.size();
    const std::string header = bytes.substr(0, nHeader), data = bytes.substr(nHeader);
    Fuzz::ImportAll(
        [&] { return Tool::ReadRaw(Fuzz::InMemory("header", header), Fuzz::InMemory("data", data)); });
    return 0;
}
