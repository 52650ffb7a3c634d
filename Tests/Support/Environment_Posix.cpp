// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/Environment.h"

#include <cstdlib>

namespace Support {

void SetEnvironment(const char* name, const std::string& value)
{
    static_cast<void>(::setenv(name, value.c_str(), 1));
}

void ClearEnvironment(const char* name)
{
    static_cast<void>(::unsetenv(name));
}

std::optional<std::string> GetEnvironment(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

PrivateConfiguration::PrivateConfiguration(const std::string& folder)
{
    SetEnvironment("SCANREADER_CONFIG_DIR", folder);
}

PrivateConfiguration::~PrivateConfiguration() = default; // the directory goes with the run's others

} // namespace Support
