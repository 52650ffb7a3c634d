// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Finds a timer by its id: open addressing with linear probing, never more than half full. Ids count up, and
// are spread so that no long runs of entries form, which looking for what is not there and taking out would
// have to go through. Taking out closes the gap, so that a map which has seen billions of ids is as fast as a
// new one. Belongs to one thread at a time.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_TimerRecord.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace BSS::TSK::Timer {

class TimerIdMapC
{
public:
    TimerIdMapC();

    /// Null when the id is not in.
    TimerRecordT* find(std::uint32_t id) const noexcept;

    /// The id must not be in and not be 0. Throws std::bad_alloc, and nothing is changed then.
    void insert(std::uint32_t id, TimerRecordT& timer);

    /// False when the id is not in.
    bool erase(std::uint32_t id) noexcept;

    bool empty() const noexcept { return m_nUsed == 0; }
    void clear() noexcept;

    /// How many entries in a row are taken at most: what an operation has to look at. For tests.
    std::size_t getLongestRun() const noexcept;

private:
    struct EntryT
    {
        std::uint32_t id = 0; ///< 0 is an empty entry
        TimerRecordT* timer = nullptr;
    };

    std::size_t Home(std::uint32_t id) const noexcept;
    std::size_t PlaceOf(std::uint32_t id) const noexcept;
    void Grow();

    std::vector<EntryT> m_entries; // as many as a power of two
    unsigned m_homeShift;          // leaves as many bits as number their groups
    std::size_t m_nUsed = 0;
};

} // namespace BSS::TSK::Timer
