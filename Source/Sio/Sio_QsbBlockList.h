// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The list of the blocks of an open file. Those that were read are kept packed until somebody asks for one of
// them; that one, and those that are made for writing, are blocks of their own from then on. The list as a
// whole never passes a fixed limit: what a file claims cannot exhaust the host. Without locks, also for what
// is const: to look at a block is to unpack it.
#pragma once

#include "Sio/Sio_QsbBlock.h"
#include "Sio/Sio_QsbBlockTally.h"
#include "Sio/Sio_QsbPackedChain.h"

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace SIO {

/// The blocks in file order, addressed by their index in the file.
class QsbBlockListC
{
public:
    /// What the blocks that are read from one file may take in memory, packed or not. Unpacking one that
    /// somebody asks for does not count.
    static constexpr std::uint64_t s_ullMemoryLimit = QsbBlockTallyC::s_ullMemoryLimit;

    /// Blocks that are not packed, by their indices. They stay where they are.
    using SingleBlocksT = std::map<std::uint64_t, QsbBlockC>;

    /// Takes a block and its index; false ends the visit.
    using VisitT = std::function<bool(const QsbBlockC& block, std::uint64_t ullIndex)>;

    QsbBlockListC() = default;

    /// Leaves the other list empty.
    QsbBlockListC(QsbBlockListC&& other) noexcept { Swap(other); }
    QsbBlockListC& operator=(QsbBlockListC&& other) noexcept
    {
        QsbBlockListC(std::move(other)).Swap(*this);
        return *this;
    }

    bool IsEmpty() const noexcept { return GetCount() == 0; }

    /// Number of blocks in the file.
    std::uint64_t GetCount() const noexcept { return m_oTally.GetCount(); }

    /// Block `ullIndex`, null beyond the last one. Owned by the list, where it stays until it is removed.
    /// Throws std::bad_alloc, but not for one that was asked for or appended before.
    const QsbBlockC* Get(std::uint64_t ullIndex) const;
    QsbBlockC* Get(std::uint64_t ullIndex);

    /// The last block; there must be one. As Get.
    QsbBlockC& Last() { return *Get(GetCount() - 1); }
    const QsbBlockC& Last() const { return *Get(GetCount() - 1); }

    /// Offset behind the last block, 0 when there is none.
    std::uint64_t GetEndOffset() const noexcept;

    /// Index of the first block with `uiId`, -1 when there is none.
    std::int64_t Find(std::uint32_t uiId) const;

    /// Calls `visit` for the blocks in the order of the file until it returns false; for identical ones with
    /// neither header nor data that follow one another once, with the index of the first of them. The block
    /// is valid during the call, in which nothing may be appended or removed. Throws std::bad_alloc and what
    /// `visit` throws.
    void ForEach(const VisitT& visit) const;

    /// Those that were asked for or appended for writing, and those with long headers. All that have changed
    /// are among them.
    const SingleBlocksT& GetSingleBlocks() const noexcept { return m_mapSingle; }

    /// Whether one more block with `nEntries` entries stays within the limit when it is not packed.
    bool HasRoomFor(std::uint64_t nEntries) const noexcept
    {
        return m_oTally.HasRoomFor(SingleMemory(nEntries)); // 2^28 at most, so no wrap
    }

    /// Appends blocks that were read from a file, from its bytes: QsbPackedChainC::AppendShown.
    [[nodiscard]] bool AppendShown(const char* pShown, std::size_t nShown, std::uint64_t& ullOffset)
    {
        return m_oPacked.AppendShown(m_oTally, pShown, nShown, ullOffset);
    }

    /// Appends a block that was read from a file: sealed, not dirty. False at the memory limit. Throws
    /// std::bad_alloc.
    [[nodiscard]] bool AppendRead(std::uint64_t ullOffset, std::uint32_t uiId, std::uint32_t uiDataBytes,
                                  QsbHeaderEntriesT entries);

    /// Appends `ullBlocks` identical blocks with neither header nor data that were read from a file.
    [[nodiscard]] bool AppendReadEmpty(std::uint64_t ullOffset, std::uint32_t uiId, std::uint64_t ullBlocks);

    /// Appends a block just created for writing: neither sealed nor dirty. Throws std::bad_alloc, and then
    /// nothing has changed.
    QsbBlockC& AppendNew(std::uint64_t ullOffset, std::uint32_t uiId);

    /// Removes the last block; there must be one. What it takes counts against the limit until Clear.
    void RemoveLast() noexcept;

    void Clear() noexcept;

    void Swap(QsbBlockListC& other) noexcept;

private:
    QsbBlockC* GetSingle(std::uint64_t ullIndex) const;
    QsbBlockC& AppendSingle(QsbBlockC&& block);

    /// What a block takes that is not packed: with its place in the tree and what the heap needs.
    static constexpr std::uint64_t SingleMemory(std::uint64_t nEntries)
    {
        constexpr std::uint64_t ullPlace = 64;
        return sizeof(QsbBlockC) + ullPlace + nEntries * sizeof(QsbHeaderEntryC);
    }

    QsbBlockTallyC m_oTally;
    QsbPackedChainC m_oPacked;
    mutable SingleBlocksT m_mapSingle; ///< a block that is packed as well is what it is here
};

} // namespace SIO
