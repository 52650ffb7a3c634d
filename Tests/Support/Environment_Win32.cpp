// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/Environment.h"

#include <stdlib.h>

namespace Support {

void SetEnvironment(const char* name, const std::string& value)
{
    static_cast<void>(_putenv_s(name, value.c_str()));
}

void ClearEnvironment(const char* name)
{
    static_cast<void>(_putenv_s(name, "")); // an empty value is no value here
}

std::optional<std::string> GetEnvironment(const char* name)
{
    const char* const value = getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

} // namespace Support
