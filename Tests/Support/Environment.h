// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Environment variables of the test process. To be changed only while no other thread runs.
#pragma once

#include <optional>
#include <string>

namespace Support {

/// Sets a variable.
void SetEnvironment(const char* name, const std::string& value);

/// Takes a variable away.
void ClearEnvironment(const char* name);

/// The variable's value, if it is set.
std::optional<std::string> GetEnvironment(const char* name);

/// Keeps the user's configuration out of this process, and this process out of the user's: as long as it lives, values are
/// read from and written to a place of its own, in `folder` or, on Windows, in the registry.
class PrivateConfiguration
{
public:
    explicit PrivateConfiguration(const std::string& folder);
    ~PrivateConfiguration();
    PrivateConfiguration(const PrivateConfiguration&) = delete;
    PrivateConfiguration& operator=(const PrivateConfiguration&) = delete;

private:
    std::wstring m_key; ///< of the registry
};

/// Sets a variable, or takes it away, for as long as this lives.
class ScopedEnvironment
{
public:
    ScopedEnvironment(const char* name, const std::optional<std::string>& value)
        : m_name(name), m_before(GetEnvironment(name))
    {
        Apply(value);
    }
    ~ScopedEnvironment() { Apply(m_before); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    void Apply(const std::optional<std::string>& value) const
    {
        if (value) {
            SetEnvironment(m_name, *value);
        } else {
            ClearEnvironment(m_name);
        }
    }

    const char* m_name;
    std::optional<std::string> m_before;
};

} // namespace Support
