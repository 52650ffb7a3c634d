// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the reader core knows of a point-cloud file format: open, read stored points, write points, close. The
// one implementation is QsbC. Without locks: an object belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <string>

namespace SIO {

class QsbPointSourceI;
class StrategyI;

class PointCloudFormatI
{
public:
    /// What ReadPoints returns on failure.
    static constexpr std::uint32_t s_uiReadFailed = 0xFFFFFFFF;

    virtual ~PointCloudFormatI() = default;

    /// A constant that tells formats apart; 1.
    virtual std::uint32_t GetFormat() const = 0;

    virtual bool IsOpen() const = 0;

    /// Opens the file at `path` for reading, writing or both. Writing alone makes a new file, or empties the
    /// one that is there. False when an object that is open is opened again (it stays as it was) and on any
    /// failure (the object is closed then).
    [[nodiscard]] virtual bool Open(const std::wstring& path, bool bRead, bool bWrite) = 0;

    /// Writes what is outstanding, closes the file and forgets its blocks. False when not everything reached
    /// the system; the object is closed all the same. Closing a closed object does nothing and succeeds.
    virtual bool Close() = 0;

    /// Copies up to `uiMaxPoints` stored points from the strategy's position to `pDestination`, which has
    /// room for them, and advances the position. Returns how many, 0 at the end of the block, or
    /// s_uiReadFailed. A batch that the file does not hold whole fails, the position stays.
    [[nodiscard]] virtual std::uint32_t ReadPoints(StrategyI& strategy, void* pDestination,
                                                   std::uint32_t uiMaxPoints) = 0;

    /// Writes the next `uiPoints` points of `source` at the strategy's position, creating a block at the
    /// first call. False when the file is not open for writing, the strategy has no point definition, the
    /// block would outgrow its 32-bit size (nothing is written then), or the system fails. A partial write is
    /// not undone.
    [[nodiscard]] virtual bool WritePoints(QsbPointSourceI& source, std::uint32_t uiPoints,
                                           StrategyI& strategy) = 0;

    /// Interprets block `llBlockIndex` (negative: the first with identifier 1, else the first with identifier
    /// 3) and hands the data to the strategy. False, and the object is closed, when there is no such block or
    /// its header makes no sense.
    [[nodiscard]] virtual bool CreateReadStrategyData(StrategyI& strategy, bool bApplyTransformation,
                                                      std::int64_t llBlockIndex) = 0;

    /// The worker behind WritePoints.
    [[nodiscard]] virtual bool WritePointsIntoBlock(QsbPointSourceI& source, std::uint32_t uiPoints,
                                                    StrategyI& strategy) = 0;
};

} // namespace SIO
