// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory for what is made on one thread and freed on another all the time: messages and their nodes. Each
// thread keeps a few blocks; what is too many goes in chains to a stack for all, which a thread that has none
// left takes whole. Chains are pushed singly and taken all at once, so no block can come back while somebody
// looks at it. Safe from any thread, at any time of a thread's life.
#pragma once

#include <cstddef>

namespace BSS::TSK {

class BlockPool
{
public:
    static constexpr std::size_t BLOCK_BYTES = 64;

    BlockPool() = delete;

    /// A block of BLOCK_BYTES. Throws std::bad_alloc.
    static void* Allocate();
    static void Free(void* block) noexcept;
};

} // namespace BSS::TSK
