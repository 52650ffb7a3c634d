// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Memory for what is made on one thread and freed on another all the time: messages and their nodes. Threads
// that allocate at the same moment do so from different slabs of 63 blocks, so that they seldom meet, and so
// that blocks which are used one after the other lie beside each other however long the pool has been in use.
// What the pool has once had from the heap it keeps. Safe from any thread, at any time of a thread's
// life; not in the child of a fork, where a lock may be held by a thread that is not there.
#pragma once

#include <cstddef>

namespace BSS::TSK {

class BlockPool
{
public:
    static constexpr std::size_t SMALL_BYTES = 32;
    static constexpr std::size_t LARGE_BYTES = 64;

    BlockPool() = delete;

    /// A block for so many bytes, from the heap if they are more than LARGE_BYTES. Throws std::bad_alloc.
    static void* Allocate(std::size_t bytes);

    /// `bytes` as they were asked for.
    static void Free(void* block, std::size_t bytes) noexcept;
};

} // namespace BSS::TSK
