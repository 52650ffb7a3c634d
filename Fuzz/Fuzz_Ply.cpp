// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Imports the input as a PLY file.
#include "Fuzz/Fuzz_Import.h"

#include <cstdint>

namespace {

constexpr std::size_t s_nMaxBytes = 65536;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nBytes)
{
    if (nBytes > s_nMaxBytes) return -1;
    const std::string bytes(reinterpret_cast<const char*>(pBytes), nBytes);
    Fuzz::ImportAll([&] { return Tool::ReadPly(Fuzz::InMemory("input", bytes)); });
    return 0;
}
