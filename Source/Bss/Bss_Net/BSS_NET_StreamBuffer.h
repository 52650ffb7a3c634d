// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// One stream of bytes that many read at their own pace: kept once, in blocks, from where the slowest reader
// is. A reader is a position in the stream. Bytes that are there never change and never move, so they can be
// sent while more are appended. Not safe by itself: whoever owns it locks, but for the bytes of a part.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>

namespace BSS::NET {

class StreamBufferC
{
public:
    static constexpr std::size_t BLOCK_BYTES = std::size_t{1} << 16;
    using BlockT = std::array<char, BLOCK_BYTES>;

    /// Bytes in one piece, and what keeps them.
    struct PartT
    {
        std::shared_ptr<const BlockT> block;
        const char* bytes = nullptr;
        std::size_t count = 0;
    };

    std::uint64_t getEnd() const noexcept { return m_end; }
    std::uint64_t getBegin() const noexcept { return m_begin; }

    void append(const char* bytes, std::size_t count)
    {
        while (count > 0) {
            const std::size_t used = static_cast<std::size_t>(m_end - m_begin) % BLOCK_BYTES;
            if (m_end - m_begin == m_blocks.size() * std::uint64_t{BLOCK_BYTES})
                m_blocks.push_back(std::make_shared<BlockT>());
            const std::size_t part = std::min(count, BLOCK_BYTES - used);
            std::memcpy(m_blocks.back()->data() + used, bytes, part);
            bytes += part;
            count -= part;
            m_end += part;
        }
    }

    /// What follows a position, up to the end of its block; nothing at the end of the stream.
    PartT getPart(std::uint64_t position) const
    {
        if (position < m_begin || position >= m_end) return {};
        const std::uint64_t offset = position - m_begin;
        const std::size_t inBlock = static_cast<std::size_t>(offset % BLOCK_BYTES);
        const std::shared_ptr<BlockT>& block = m_blocks[static_cast<std::size_t>(offset / BLOCK_BYTES)];
        const std::uint64_t left = std::min<std::uint64_t>(m_end - position, BLOCK_BYTES - inBlock);
        return {block, block->data() + inBlock, static_cast<std::size_t>(left)};
    }

    /// Nobody needs what is before this position any more.
    void release(std::uint64_t position)
    {
        while (!m_blocks.empty() && position >= m_begin + BLOCK_BYTES) {
            m_blocks.pop_front();
            m_begin += BLOCK_BYTES;
        }
    }

private:
    std::deque<std::shared_ptr<BlockT>> m_blocks;
    std::uint64_t m_begin = 0; // of the first block
    std::uint64_t m_end = 0;
};

} // namespace BSS::NET
