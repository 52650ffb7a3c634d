// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How often the calling thread has allocated from the heap since the object was made, through operator new.
// Only for executables that list AllocationCount.cpp, which replaces that operator.
#pragma once

#include <cstddef>

namespace Support {

class AllocationCount
{
public:
    AllocationCount() noexcept;
    std::size_t Count() const noexcept;

    /// Bytes asked for by the largest of them.
    std::size_t Largest() const noexcept;

    /// Bytes asked for by all of them together.
    std::size_t Bytes() const noexcept;

private:
    std::size_t m_before;
    std::size_t m_bytesBefore;
};

} // namespace Support
