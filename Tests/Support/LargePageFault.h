// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Counts the large pages that are taken and given back, and refuses one of them: the nth from its making on.
// Works in executables that list LargePageFault.cpp and have the linker wrap the two functions. For one
// thread, one at a time.
#pragma once

#include <cstddef>

namespace Support {

class LargePageFault
{
public:
    /// n = 0 only counts.
    explicit LargePageFault(std::size_t n = 0);
    ~LargePageFault();
    LargePageFault(const LargePageFault&) = delete;
    LargePageFault& operator=(const LargePageFault&) = delete;

    /// Pages that were asked for.
    std::size_t Asked() const;

    /// Pages that were got and are not given back yet.
    std::size_t Held() const;

    bool Happened() const;

private:
    std::size_t m_n;
};

} // namespace Support
