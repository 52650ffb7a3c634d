// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cursor through which one point-cloud block is read or written. A strategy lives as long as its reader;
// once a block has been interpreted it owns that block's data: what the header says and the position in the
// data area. Without locks: a strategy belongs to one thread at a time. Touches no file.
#pragma once

#include "API_Hdr/GMAT_Algebra.h"
#include "Sio/SIO_QsbPointDefinitionImpl.h"
#include "Sio/Sio_CacheLine.h"
#include "Sio/Sio_QsbDecodePlan.h"
#include "Sio/Sio_QsbEncodePlan.h"

#include <cstdint>
#include <limits>
#include <memory>

namespace SIO {

/// Axis-aligned box. Empty at first: the minimum is the largest finite double, the maximum its negative.
struct QsbBoundingBoxC
{
    double adMin[3] = {std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                       std::numeric_limits<double>::max()};
    double adMax[3] = {std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest(),
                       std::numeric_limits<double>::lowest()};
};

/// What a block's header says beside its elements, or what a new block's header is to say.
struct QsbScanInfoC
{
    QsbBoundingBoxC oBoundingBox;   ///< of the positions as stored
    GMAT::Matrix4C oTransformation; ///< maps stored positions, row-major
    double dInstrumentHeight = 0.0;
    std::uint32_t auiGridSize[2] = {0, 0}; ///< largest row index and largest column index; 0: no grid
};

/// Base of what a strategy keeps of a block.
class StrategyDataI
{
public:
    virtual ~StrategyDataI() = default;
};

/// One interpreted point-cloud block.
class alignas(s_nCacheLineBytes) QsbStrategyDataC final : public StrategyDataI
{
public:
    QsbStrategyDataC(std::uint64_t ullSession, std::int64_t llBlockIndex) noexcept
        : m_ullSession(ullSession), m_llBlockIndex(llBlockIndex)
    {}

    // The block is named by the opening of a file that it belongs to and its index there, never by address:
    // data that outlives its file is noticed.
    std::uint64_t m_ullSession;
    std::int64_t m_llBlockIndex;
    PointDefinitionC m_oPointDefinition;
    QsbDecodePlanC m_oDecodePlan; ///< of that definition
    QsbEncodePlanC m_oEncodePlan; ///< likewise
    QsbScanInfoC m_oInfo;
    std::uint64_t m_ullPosition = 0; ///< byte in the data area that is read or written next
    std::uint64_t m_ullNumberOfPoints = 0;
    std::uint64_t m_ullDataBytes = 0; ///< what the block's head says
    std::uint64_t m_ullDataBytesPresent =
        0; ///< as much of it as the file held when the block was interpreted, or was written since
};

/// What the container and the reader know of a strategy.
class StrategyI
{
public:
    /// Gives the definition that points are written with. Not owned; it must live until the next one is given
    /// or a block has been created or interpreted.
    virtual void SetPointDefinition(PointDefinitionContainerI* poPointDefinition) = 0;

    /// Points of the block; 0 while none has been interpreted.
    virtual std::uint64_t GetNumberOfPoints() const = 0;

    /// Copies the block's bounding box. False, and nothing is copied, while no block has been interpreted.
    virtual bool GetBoundingBox(double& minX, double& minY, double& minZ, double& maxX, double& maxY,
                                double& maxZ) const = 0;

    virtual ~StrategyI() = default;

    /// Goes to point `ullIndex`; the number of points itself is allowed. False beyond it or without a block.
    virtual bool Seek(std::uint64_t ullIndex) = 0;
};

class alignas(s_nCacheLineBytes) QsbStrategyC final : public StrategyI
{
public:
    QsbStrategyC() = default;
    QsbStrategyC(const QsbStrategyC&) = delete;
    QsbStrategyC& operator=(const QsbStrategyC&) = delete;

    void SetPointDefinition(PointDefinitionContainerI* poPointDefinition) override;
    std::uint64_t GetNumberOfPoints() const override;
    bool GetBoundingBox(double& minX, double& minY, double& minZ, double& maxX, double& maxY,
                        double& maxZ) const override;
    bool Seek(std::uint64_t ullIndex) override;

    /// The definition in use: the one given, or the interpreted block's own. Null when there is neither.
    PointDefinitionContainerI* GetPointDefinition() const noexcept { return m_poPointDefinition; }

    /// The interpreted block; null when there is none or the data is of another class.
    QsbStrategyDataC* GetData() const noexcept;

    /// Whether there is data of any class.
    bool HasData() const noexcept { return m_poData != nullptr; }

    /// Takes over an interpreted block and uses its definition from now on.
    void SetData(std::unique_ptr<QsbStrategyDataC> poData) noexcept;

    /// Takes over data of another class, which behaves as none.
    void SetForeignData(std::unique_ptr<StrategyDataI> poData) noexcept;

    /// Deletes the data, and forgets the definition, which may have been the data's.
    void ResetData() noexcept;

    /// The interpreted block's matrix. False, and `matrix` stays, while there is none.
    bool GetTransformation(GMAT::Matrix4C& matrix) const;

    /// What the interpreted block's header says; what a new block's header is to say while there is none.
    const QsbScanInfoC& GetInfo() const noexcept;

    /// What the header of a block created by writing will say.
    QsbScanInfoC& WriteInfo() noexcept { return m_oWriteInfo; }

    /// Which block to read: -1 chooses the first with identifier 1, else the first with identifier 3.
    std::int32_t GetBlockIndex() const noexcept { return m_iBlockIndex; }
    void SetBlockIndex(std::int32_t iBlockIndex) noexcept { m_iBlockIndex = iBlockIndex; }

    /// Identifier of blocks created by writing, 1 at first.
    std::uint32_t GetWriteBlockId() const noexcept { return m_uiWriteBlockId; }
    void SetWriteBlockId(std::uint32_t uiBlockId) noexcept { m_uiWriteBlockId = uiBlockId; }

private:
    std::unique_ptr<StrategyDataI> m_poData;
    PointDefinitionContainerI* m_poPointDefinition = nullptr;
    std::int32_t m_iBlockIndex = -1;
    std::uint32_t m_uiWriteBlockId = 1;
    QsbScanInfoC m_oWriteInfo;
};

} // namespace SIO
