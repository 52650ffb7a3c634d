// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Walking the block chain of a file from its start to its end. The walk reads ahead through a window and
// seeks only over large data areas; it compares every size with what the file really holds before it
// allocates, and passes the unstored zeros of a sparse file without reading them, so its time is bounded by
// what is stored. Knows the chain, not what is in the blocks.
#pragma once

#include <cstdio>

namespace SIO {

class QsbBlockListC;
class StreamWindowC;

/// Appends the blocks of `stream`, which `window` is attached to, to `blocks`, which must be empty. Returns
/// false, with the blocks found so far in the list, when the first block is not a file header, a block head
/// or header is cut off, a header's size is not a multiple of 16, the file cannot be read, or the list
/// reaches its memory limit. Data areas that the file does not hold whole are not an error.
[[nodiscard]] bool WalkBlockChain(std::FILE* stream, StreamWindowC& window, QsbBlockListC& blocks);

} // namespace SIO
