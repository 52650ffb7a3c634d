// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the list of blocks keeps count of: how many there are, which is the first of a kind, and the memory
// that they take, which never passes a fixed limit: what a file claims cannot exhaust the host.
#pragma once

#include <array>
#include <cstdint>

namespace SIO {

class QsbBlockTallyC
{
public:
    static constexpr std::uint64_t s_ullMemoryLimit = std::uint64_t{512} << 20;

    std::uint64_t GetCount() const noexcept { return m_ullCount; }
    void SetCount(std::uint64_t ullCount) noexcept { m_ullCount = ullCount; }

    /// Whether the first block of an identifier is noted: of the small ones, which point clouds have. With a
    /// million blocks it takes long to look for one.
    static constexpr bool IsWatched(std::uint32_t uiId) { return uiId < s_nWatchedIds; }

    /// Whether Note must be told of a block with the identifier.
    bool IsNews(std::uint32_t uiId) const noexcept { return IsWatched(uiId) && m_allFirst[uiId] < 0; }

    /// Block `ullIndex` has the identifier, and none behind it has been noted yet.
    void Note(std::uint32_t uiId, std::uint64_t ullIndex) noexcept
    {
        if (IsNews(uiId)) m_allFirst[uiId] = static_cast<std::int64_t>(ullIndex);
    }

    /// Index of the first block with a watched identifier, -1 when there is none.
    std::int64_t First(std::uint32_t uiId) const noexcept { return m_allFirst[uiId]; }

    /// The last block is no more.
    void CountDown() noexcept
    {
        --m_ullCount;
        for (std::int64_t& llFirst : m_allFirst) {
            if (llFirst == static_cast<std::int64_t>(m_ullCount)) llFirst = -1;
        }
    }

    bool HasRoomFor(std::uint64_t ullBytes) const noexcept
    {
        return ullBytes <= s_ullMemoryLimit - m_ullMemory;
    }

    /// False, and nothing is taken, when there is no room.
    [[nodiscard]] bool Take(std::uint64_t ullBytes) noexcept
    {
        if (!HasRoomFor(ullBytes)) return false;
        m_ullMemory += ullBytes;
        return true;
    }
    void GiveBack(std::uint64_t ullBytes) noexcept { m_ullMemory -= ullBytes; }

private:
    static constexpr std::uint32_t s_nWatchedIds = 4;

    std::uint64_t m_ullCount = 0;
    std::uint64_t m_ullMemory = 0; ///< at most the limit, since Take alone adds to it
    std::array<std::int64_t, s_nWatchedIds> m_allFirst = {-1, -1, -1, -1};
};

} // namespace SIO
