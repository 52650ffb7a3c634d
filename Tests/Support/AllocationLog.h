// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which blocks of the heap were taken for whom, through operator new, and are still there. Only for
// executables that list AllocationLog.cpp, which replaces that operator in all its forms. For one thread.
#pragma once

#include <cstddef>
#include <vector>

namespace Support {

struct BlockT
{
    const char* pFirst;
    std::size_t nBytes;
};

/// While it lives, what is allocated is taken for `owner`, a number from 1 to 9.
class AllocationsFor
{
public:
    explicit AllocationsFor(int owner) noexcept;
    ~AllocationsFor();
    AllocationsFor(const AllocationsFor&) = delete;
    AllocationsFor& operator=(const AllocationsFor&) = delete;
};

/// The blocks of `owner` that have not been freed.
std::vector<BlockT> BlocksOf(int owner);

} // namespace Support
