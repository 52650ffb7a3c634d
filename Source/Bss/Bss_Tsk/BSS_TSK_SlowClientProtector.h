// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Keeps a request from flooding a client that is slower than its timer: lets one message through at a time
// and counts those that were held back. Safe from any thread.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

class SlowClientProtectorC final : public UTI::SharedObjectC
{
public:
    /// True once, until free() is called; otherwise the skip is counted.
    [[nodiscard]] bool occupy() noexcept
    {
        if (!m_bOccupied.exchange(true)) return true;
        m_nSkipped.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    void free() noexcept { m_bOccupied.store(false); }

    std::uint32_t getSkippedCount() const noexcept { return m_nSkipped.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_bOccupied{false};
    std::atomic<std::uint32_t> m_nSkipped{0};
};

} // namespace BSS::TSK
