// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Walks the chain of blocks of a file that may be damaged, as far as it can be followed. It ends with success
// where the reader's own walk does; where the reader gives up it says why, and keeps what there is. Only just
// at the limit of memory the two may differ, as how well blocks are packed depends on how many of them are
// shown at once. Sizes that the file states are compared with what it holds before anything is allocated.
// Knows the chain, not what is in the blocks.
#pragma once

#include "Sio/Sio_QsbBlockList.h"

#include <cstdint>
#include <functional>

namespace Tool {

class FindingListC;
class ScanInputI;

/// Is told how many more bytes have been passed, at least several times a second; may throw to end the work.
using PassedT = std::function<void(std::uint64_t ullBytes)>;

struct ChainC
{
    SIO::QsbBlockListC
        oBlocks;         ///< as far as the chain goes; the last one may have fewer entries than it states
    bool bWhole = false; ///< the end of the file was reached, and the reader accepts the chain
    bool bLastHeaderWhole =
        true; ///< all entries of the last block are there, and where its data begin is certain
};

ChainC WalkChain(ScanInputI& input, FindingListC& findings, const PassedT& passed);

} // namespace Tool
