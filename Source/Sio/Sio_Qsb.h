// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The QSB container: a chain of blocks in a file, and the stored points in their data areas. It holds the
// open C stream and the list of blocks; where in a block reading or writing goes on is the strategy's.
// Nothing in a file is trusted: sizes are checked in 64 bits against what is there, and running out of memory
// ends as a refusal. Without locks: a container belongs to one thread at a time.
#pragma once

#include "Sio/Sio_CacheLine.h"
#include "Sio/Sio_PointCloudFormat.h"
#include "Sio/Sio_QsbBlockList.h"
#include "Sio/Sio_StreamWindow.h"

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <cstdio>
#include <memory>

namespace SIO {

class PointDefinitionContainerI;
class QsbStrategyC;
class QsbStrategyDataC;
struct QsbBoundingBoxC;
struct QsbPointC;

class alignas(s_nCacheLineBytes) QsbC final : public PointCloudFormatI
{
public:
    QsbC() = default;
    QsbC(const QsbC&) = delete;
    QsbC& operator=(const QsbC&) = delete;

    /// Closes.
    ~QsbC() override;

    std::uint32_t GetFormat() const override { return 1; }
    bool IsOpen() const override { return m_pStream != nullptr; }
    [[nodiscard]] bool Open(const std::wstring& path, bool bRead, bool bWrite) override;

    /// Opens for reading, and tells of a failure whether the file was a whole block chain all the same: what
    /// IsQsbFile would have said, without walking the chain twice.
    [[nodiscard]] bool OpenToRead(const std::wstring& path, bool& bQsbFile);

    bool Close() override;
    [[nodiscard]] std::uint32_t ReadPoints(StrategyI& strategy, void* pDestination,
                                           std::uint32_t uiMaxPoints) override;

    /// As ReadPoints, but the stored points may stay where the container has them anyway: `pRecords` points
    /// there, or to `pScratch`, which has room for them. Valid until the next operation.
    [[nodiscard]] std::uint32_t ViewPoints(StrategyI& strategy, char* pScratch, std::uint32_t uiMaxPoints,
                                           const char*& pRecords);

    [[nodiscard]] bool WritePoints(QsbPointSourceI& source, std::uint32_t uiPoints,
                                   StrategyI& strategy) override;
    [[nodiscard]] bool CreateReadStrategyData(StrategyI& strategy, bool bApplyTransformation,
                                              std::int64_t llBlockIndex) override;
    [[nodiscard]] bool WritePointsIntoBlock(QsbPointSourceI& source, std::uint32_t uiPoints,
                                            StrategyI& strategy) override;

    /// As the operation above, with the points in an array.
    [[nodiscard]] bool WritePoints(const QsbPointC* poPoints, std::uint32_t uiPoints, StrategyI& strategy);

    /// Whether the file at `path` can be opened and is a whole block chain: no block at all, or a file header
    /// first. Says nothing of its version or of what is in its blocks. Throws nothing but std::bad_alloc.
    static bool IsQsbFile(const std::wstring& path);

    /// Appends an empty block. Returns its index, or -1 and nothing has changed.
    std::int64_t AppendBlock(std::uint32_t uiId);

    /// Writes bytes into a block's data area and seals the block. Only the last block grows.
    [[nodiscard]] bool WriteBytesIntoBlock(std::int64_t llBlockIndex, std::uint64_t ullPosition,
                                           std::uint64_t ullBytes, const void* pSource);

    /// Writes the head and the entries of a block again; the dirty mark goes only when all is written.
    /// Closing does this for every dirty block. False when it failed or there is no such block.
    bool RewriteBlockHeader(std::int64_t llBlockIndex);

    /// Replaces the bounding box in the header of the strategy's block, whose final values are known only
    /// when the last point has been written. False without a block or when the file is not open for writing.
    [[nodiscard]] bool SetBoundingBox(StrategyI& strategy, const QsbBoundingBoxC& box);

    /// Cuts the last block off and re-opens the file. Warning: the cut stands 12 bytes before the end of the
    /// block that is then the last, and the file is re-opened in a mode that empties it, so no usable file is
    /// left; a block is removed by writing a new file without it.
    [[nodiscard]] bool DropLastBlock();

    /// The blocks of the open file.
    const QsbBlockListC& GetBlocks() const noexcept { return m_oBlocks; }

    /// Path of the open file, empty when closed.
    const std::wstring& GetPath() const noexcept { return m_strPath; }

private:
    bool OpenOrClose(const std::wstring& path, bool bRead, bool bWrite, bool& bWholeChain);
    bool OpenChecked(const std::wstring& path, bool bRead, bool bWrite, bool& bWholeChain);
    bool HasSupportedVersion() const;
    bool CreateFileHeader();
    bool Interpret(QsbStrategyC& strategy, bool bApplyTransformation, std::int64_t llBlockIndex);
    std::int64_t ChooseBlock(std::int64_t llBlockIndex) const noexcept;
    bool WriteHead(const QsbBlockC& block, std::uint32_t uiHeaderBytes, std::uint32_t uiDataBytes);
    bool CreateBlockToWrite(QsbStrategyC& strategy);
    QsbBlockC* BlockAt(std::int64_t llBlockIndex) noexcept;
    bool DropLastBlockAndReopen(const boost::filesystem::path& path);
    bool EncodeInto(QsbStrategyDataC& data, const PointDefinitionContainerI& definition,
                    QsbPointSourceI& source, std::uint32_t uiPoints);
    char* EncodeBuffer(std::size_t nBytes);
    QsbBlockC* BlockOf(const QsbStrategyDataC& data) noexcept;
    bool IsLastBlock(std::int64_t llBlockIndex) const noexcept;
    bool SeekToWrite(std::uint64_t ullOffset);
    bool ReadBytes(std::uint64_t ullOffset, std::size_t nBytes, char* pScratch, const char*& pBytes);

    std::wstring m_strPath;
    bool m_bRead = false;
    bool m_bWrite = false;
    std::FILE* m_pStream = nullptr;
    StreamWindowC m_oWindow; ///< on the stream, for reading
    QsbBlockListC m_oBlocks;
    std::unique_ptr<char[]> m_pEncodeBytes; ///< kept from batch to batch until the file is closed
    std::size_t m_nEncodeBytes = 0;
    std::uint64_t m_ullSession = 0; ///< tells this opening of a file from every other one of the process
};

} // namespace SIO
