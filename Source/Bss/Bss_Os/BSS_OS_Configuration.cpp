// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_Configuration.h"

#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

namespace BSS::OS {

namespace {

constexpr wchar_t KEY[] = L"Configuration";
constexpr wchar_t ASSERT_ENABLED[] = L"ASSERTEnabled";
constexpr wchar_t ERROR_LOG_SIZE[] = L"ErrorLogSize";
constexpr unsigned KIB_SHIFT = 10;

} // namespace

bool ReadAssertEnabled(const ConfigStoreI& store)
{
    std::uint32_t value = 0;
    return store.Read(KEY, ASSERT_ENABLED, value) == RC_OK && value != 0;
}

ResultCodeT WriteAssertEnabled(ConfigStoreI& store, bool enabled)
{
    return store.Write(KEY, ASSERT_ENABLED, enabled ? 1 : 0);
}

std::uint64_t ReadErrorLogLimitBytes(const ConfigStoreI& store, std::uint64_t defaultBytes)
{
    std::uint32_t kib = 0;
    if (store.Read(KEY, ERROR_LOG_SIZE, kib) != RC_OK) return defaultBytes;
    return static_cast<std::uint64_t>(kib) << KIB_SHIFT; // 64 bits: the largest value would not fit 32
}

} // namespace BSS::OS
