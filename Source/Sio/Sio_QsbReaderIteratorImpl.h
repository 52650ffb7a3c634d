// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The iterator behind the handle: batch size, position in the file and the raw buffer that stored records are
// read into. It follows the strategy of the reader that it was last used with, without keeping it alive.
// Without locks.
#pragma once

#include "Sio/API_Base.h"
#include "Sio/Sio_CacheLine.h"

#include <boost/shared_array.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <cstdint>

namespace SIO {

class QsbStrategyC;

class alignas(s_nCacheLineBytes) QsbReaderIteratorImplC final : public API::ImplObjectC
{
public:
    /// A size of 0 is reported and becomes 1.
    explicit QsbReaderIteratorImplC(std::uint32_t uiSize);

    void Reset();
    bool HasMorePoints() const;
    void Next();
    void Previous();

    /// Stores the position (0 for one that is negative as a signed number) and seeks the strategy to it.
    /// False, with the position stored, when the strategy is gone or has fewer points.
    bool SetIteratorPos(std::uint64_t ullPos);

    /// Follows `spStrategy` from now on, at the position reached so far. The raw buffer is made anew when the
    /// strategy is another one or its block has changed. False when there is no strategy or it has no block
    /// yet.
    bool BindStrategy(const boost::shared_ptr<QsbStrategyC>& spStrategy);

    /// Seeks the followed strategy to the position, when the position lies within its points.
    bool SeekStrategy();

    /// Whether the buffer takes the whole batch that the strategy would read next.
    bool CanHoldBatch() const;

    /// Records that the buffer takes: the batch size, or fewer where the file holds fewer.
    std::uint32_t GetCapacity() const noexcept { return m_uiCapacity; }

    /// The raw buffer; empty until bound.
    const boost::shared_array<char>& GetBuffer() const noexcept { return m_spBuffer; }

    std::uint64_t GetIteratorPos() const noexcept { return m_ullIteratorPos; }
    std::uint32_t GetSize() const noexcept { return m_uiSize; }

private:
    std::uint32_t m_uiSize;
    std::uint64_t m_ullIteratorPos = 0; ///< first point of the next batch
    boost::weak_ptr<QsbStrategyC> m_wpStrategy;
    boost::shared_array<char> m_spBuffer; ///< in cache lines of its own
    std::uint32_t m_uiCapacity = 0;
    std::size_t m_tRecordBytes = 0; ///< of the records that m_uiCapacity counts
};

} // namespace SIO
