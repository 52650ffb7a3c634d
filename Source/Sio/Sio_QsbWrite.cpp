// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The container's writing side. A new block reaches the disk as a head with sizes of zero; its true sizes and
// its entries follow when the file is closed, so a file whose writer died ends in a block that reads as
// empty.
#include "Sio/Sio_Qsb.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockHeader.h"
#include "Sio/Sio_QsbPointSource.h"
#include "Sio/Sio_QsbStrategy.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <memory>
#include <new>

namespace SIO {

namespace Hal = BSS::HAL;

namespace {

/// Encoded points are written in pieces of this size at the most, whatever the size of a batch: large,
/// because file systems take few large pieces faster than many small ones, but no larger than a processor's
/// second cache holds together with the points.
constexpr std::size_t s_nEncodeBytes = std::size_t{1} << 19;

/// How many records to write at `ullOffset` in one piece. A piece that does not end the batch ends right
/// before a multiple of its size in the file: the system keeps a file in large aligned pieces itself, and
/// cannot when a write has left a few bytes where the next of them begins.
std::uint32_t PieceAt(std::uint64_t ullOffset, std::uint64_t ullRecordBytes, std::uint32_t uiLeft)
{
    const std::uint64_t ullToMultiple = s_nEncodeBytes - ullOffset % s_nEncodeBytes;
    const std::uint64_t ullRecords = ullToMultiple / ullRecordBytes;
    const std::uint64_t ullMost = ullRecords != 0 ? ullRecords : s_nEncodeBytes / ullRecordBytes;
    return static_cast<std::uint32_t>(std::clamp<std::uint64_t>(ullMost, 1, uiLeft));
}

/// Whether two definitions lay out a stored point in the same way.
bool HaveSameLayout(const PointDefinitionContainerI& a, const PointDefinitionContainerI& b)
{
    if (a.GetCount() != b.GetCount() || a.GetSizeInBytes() != b.GetSizeInBytes()) return false;
    for (std::size_t i = 0; i < a.GetCount(); ++i) {
        const PointDefinitionI* pA = a.GetElement(i);
        const PointDefinitionI* pB = b.GetElement(i);
        if (pA == nullptr || pB == nullptr) return false;
        if (pA->GetAvailablePointData() != pB->GetAvailablePointData() ||
            pA->GetTypeCode() != pB->GetTypeCode()) {
            return false;
        }
    }
    return true;
}

/// Encodes the next points of `source`: plain records by the batch, any other points one by one. `plan` is
/// that of `definition`.
void EncodePart(const QsbEncodePlanC& plan, const PointDefinitionContainerI& definition,
                QsbPointSourceI& source, std::uint32_t uiPoints, char* pDestination)
{
    auto* array = dynamic_cast<ArrayBasedPointSourceC*>(&source);
    const QsbInstructionSetT eSet = GetInstructionSet();
    if (array != nullptr && plan.IsUsable() && eSet != QsbInstructionSetT::eVirtual) {
        plan.Encode(array->GetCursor(), uiPoints, pDestination, eSet);
        array->Skip(uiPoints);
        return;
    }
    for (std::uint32_t i = 0; i < uiPoints; ++i) {
        definition.Encode(source.Current(), pDestination);
        source.Advance();
        pDestination += definition.GetSizeInBytes();
    }
}

} // namespace

bool QsbC::CreateFileHeader()
{
    QsbBlockC& block = m_oBlocks.AppendNew(0, QsbFormat::s_uiFileHeaderId);
    const bool bAdded = block.AddEntry(QsbHeaderEntryC::FromUInt32(
        QsbFormat::s_uiTypeUInt32, QsbFormat::s_uiTagVersion, QsbFormat::s_uiVersion2));
    return bAdded && WriteHead(block, 0, 0);
}

bool QsbC::WriteHead(const QsbBlockC& block, std::uint32_t uiHeaderBytes, std::uint32_t uiDataBytes)
{
    char acHead[QsbFormat::s_nBlockHeadBytes];
    StoreLittleEndian(acHead, block.GetId());
    StoreLittleEndian(acHead + 4, uiHeaderBytes);
    StoreLittleEndian(acHead + 8, uiDataBytes);
    return SeekToWrite(block.GetOffset()) &&
           std::fwrite(acHead, 1, sizeof acHead, m_pStream) == sizeof acHead;
}

bool QsbC::SeekToWrite(std::uint64_t ullOffset)
{
    m_oWindow.Forget();
    return Hal::SeekStream(m_pStream, ullOffset);
}

bool QsbC::IsLastBlock(std::int64_t llBlockIndex) const noexcept
{
    return static_cast<std::uint64_t>(llBlockIndex) + 1 == m_oBlocks.GetCount();
}

std::int64_t QsbC::AppendBlock(std::uint32_t uiId)
{
    if (m_pStream == nullptr || m_oBlocks.IsEmpty()) return -1;
    const std::uint64_t ullOffset = m_oBlocks.GetEndOffset();
    try {
        QsbBlockC& previous = m_oBlocks.Last();
        if (!WriteHead(QsbBlockC(ullOffset, uiId, 0), 0, 0)) return -1;
        m_oBlocks.AppendNew(ullOffset, uiId);
        previous.SetSealed(true);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return static_cast<std::int64_t>(m_oBlocks.GetCount()) - 1;
}

bool QsbC::WriteBytesIntoBlock(std::int64_t llBlockIndex, std::uint64_t ullPosition, std::uint64_t ullBytes,
                               const void* pSource)
{
    if (m_pStream == nullptr || llBlockIndex < 0) return false;
    QsbBlockC* block = BlockAt(llBlockIndex);
    if (block == nullptr) return false;
    const bool bLast = IsLastBlock(llBlockIndex);
    block->SetSealed(true);
    const std::uint64_t ullLimit = bLast ? QsbFormat::s_ullMaxDataBytes : block->GetDataBytes();
    if (ullPosition > ullLimit || ullBytes > ullLimit - ullPosition) return false;
    if (ullBytes == 0) return true;
    if (!SeekToWrite(block->GetDataOffset() + ullPosition)) return false;
    if (std::fwrite(pSource, 1, static_cast<std::size_t>(ullBytes), m_pStream) != ullBytes) return false;
    if (bLast && ullPosition + ullBytes > block->GetDataBytes()) {
        block->SetDataBytes(static_cast<std::uint32_t>(ullPosition + ullBytes));
        block->SetHeaderDirty(true); // The size on disk is now too small, also for a block that was read.
    }
    return true;
}

QsbBlockC* QsbC::BlockAt(std::int64_t llBlockIndex) noexcept
{
    try {
        return m_oBlocks.Get(static_cast<std::uint64_t>(llBlockIndex));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool QsbC::RewriteBlockHeader(std::int64_t llBlockIndex)
{
    if (m_pStream == nullptr || llBlockIndex < 0) return false;
    QsbBlockC* block = BlockAt(llBlockIndex);
    if (block == nullptr) return false;
    if (!WriteHead(*block, block->GetHeaderBytes(), block->GetDataBytes())) return false;
    const std::size_t nBytes = block->GetHeaderBytes();
    if (nBytes != 0 && std::fwrite(block->begin(), 1, nBytes, m_pStream) != nBytes) return false;
    block->SetHeaderDirty(false);
    return true;
}

bool QsbC::SetBoundingBox(StrategyI& strategy, const QsbBoundingBoxC& box)
{
    auto* pStrategy = dynamic_cast<QsbStrategyC*>(&strategy);
    QsbStrategyDataC* data = pStrategy != nullptr ? pStrategy->GetData() : nullptr;
    QsbBlockC* block = m_bWrite && data != nullptr ? BlockOf(*data) : nullptr;
    if (block == nullptr) return false;
    ChangeBoundingBox(*block, box);
    data->m_oInfo.oBoundingBox = box;
    return true;
}

bool QsbC::DropLastBlock()
{
    if (!m_bWrite || m_oBlocks.GetCount() < 2 || m_pStream == nullptr) return false;
    try {
        return DropLastBlockAndReopen(Hal::FilesystemPath(Hal::LongPath(m_strPath)));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool QsbC::DropLastBlockAndReopen(const boost::filesystem::path& path)
{
    QsbBlockC& last =
        *m_oBlocks.Get(m_oBlocks.GetCount() - 2); // before anything is lost, if there is no memory
    m_oBlocks.RemoveLast();
    last.SetSealed(false);
    last.SetHeaderDirty(true);
    std::fclose(m_pStream);
    m_pStream = nullptr;
    // This length and the mode below are the operation's contract, destructive as they are.
    const std::uint64_t ullLength = last.GetOffset() + last.GetHeaderBytes() + last.GetDataBytes();
    boost::system::error_code error;
    boost::filesystem::resize_file(path, ullLength, error);
    m_pStream = Hal::OpenStream(m_strPath, "w+b");
    m_oWindow.Attach(m_pStream);
    if (m_pStream != nullptr) return true;
    Close(); // nothing is left of the file, so nothing may be left of its blocks
    return false;
}

bool QsbC::WritePoints(QsbPointSourceI& source, std::uint32_t uiPoints, StrategyI& strategy)
{
    if (m_pStream == nullptr || !m_bWrite) return false;
    auto* pStrategy = dynamic_cast<QsbStrategyC*>(&strategy);
    if (pStrategy == nullptr || pStrategy->GetPointDefinition() == nullptr) return false;
    return WritePointsIntoBlock(source, uiPoints, strategy);
}

bool QsbC::WritePoints(const QsbPointC* poPoints, std::uint32_t uiPoints, StrategyI& strategy)
{
    ArrayBasedPointSourceC source(poPoints);
    return WritePoints(source, uiPoints, strategy);
}

bool QsbC::WritePointsIntoBlock(QsbPointSourceI& source, std::uint32_t uiPoints, StrategyI& strategy)
{
    auto* pStrategy = dynamic_cast<QsbStrategyC*>(&strategy);
    if (m_pStream == nullptr || pStrategy == nullptr) return false;
    const PointDefinitionContainerI* definition = pStrategy->GetPointDefinition();
    if (pStrategy->HasData() && pStrategy->GetData() == nullptr) return false;

    // Refused before anything is written or created: the data size is a 32-bit number.
    const std::uint64_t ullRecordBytes = definition != nullptr ? definition->GetSizeInBytes() : 0;
    const std::uint64_t ullStart = pStrategy->HasData() ? pStrategy->GetData()->m_ullPosition : 0;
    if (ullRecordBytes != 0 && uiPoints > (QsbFormat::s_ullMaxDataBytes - ullStart) / ullRecordBytes)
        return false;

    try {
        if (!pStrategy->HasData() && !CreateBlockToWrite(*pStrategy)) return false;
        QsbStrategyDataC& data = *pStrategy->GetData();
        if (definition == nullptr || !HaveSameLayout(*definition, data.m_oPointDefinition)) return false;
        return EncodeInto(data, *definition, source, uiPoints);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool QsbC::CreateBlockToWrite(QsbStrategyC& strategy)
{
    PointDefinitionContainerI* definition = strategy.GetPointDefinition();
    const std::int64_t llIndex = AppendBlock(strategy.GetWriteBlockId());
    if (llIndex < 0) return false;
    std::unique_ptr<QsbStrategyDataC> data;
    try {
        if (AddBlockHeader(m_oBlocks.Last(), strategy.WriteInfo(), definition)) {
            data = std::make_unique<QsbStrategyDataC>(m_ullSession, llIndex);
            if (!InterpretBlockHeader(m_oBlocks.Last(), true, *data)) data.reset();
        }
    } catch (const std::bad_alloc&) {
        data.reset();
    }
    if (data == nullptr) {
        // A block left half made would be found before the one that a second try makes.
        m_oBlocks.RemoveLast();
        return false;
    }
    // From here on the strategy uses the block's own definition, so the caller's may go.
    strategy.SetData(std::move(data));
    return true;
}

char* QsbC::EncodeBuffer(std::size_t nBytes)
{
    if (nBytes > m_nEncodeBytes) {
        m_nEncodeBytes = 0;
        m_pEncodeBytes.reset(new char[nBytes]);
        m_nEncodeBytes = nBytes;
    }
    return m_pEncodeBytes.get();
}

bool QsbC::EncodeInto(QsbStrategyDataC& data, const PointDefinitionContainerI& definition,
                      QsbPointSourceI& source, std::uint32_t uiPoints)
{
    QsbBlockC* block = BlockOf(data);
    if (block == nullptr) return false;
    if (uiPoints == 0) return true;
    const std::uint64_t ullRecordBytes = data.m_oPointDefinition.GetSizeInBytes();
    const std::uint64_t ullEnd = data.m_ullPosition + uiPoints * ullRecordBytes;
    // The points are written in pieces, so what cannot be written whole is refused before the first of them.
    if (!IsLastBlock(data.m_llBlockIndex) && ullEnd > block->GetDataBytes()) return false;
    const std::uint64_t ullPointsAfter = ullEnd / ullRecordBytes;
    if (ullPointsAfter > data.m_ullNumberOfPoints && !CanChangePointCount(*block, ullPointsAfter))
        return false;

    // A definition of the caller's may have a way of its own to encode, even when it lays out the same bytes.
    const bool bOfBlock = &definition == &data.m_oPointDefinition;
    const QsbEncodePlanC planOfCaller = bOfBlock ? QsbEncodePlanC() : QsbEncodePlanC(definition);
    const QsbEncodePlanC& plan = bOfBlock ? data.m_oEncodePlan : planOfCaller;
    const std::uint64_t ullMostRecords =
        std::clamp<std::uint64_t>(s_nEncodeBytes / ullRecordBytes, 1, uiPoints);
    char* const pBuffer = EncodeBuffer(static_cast<std::size_t>(ullMostRecords * ullRecordBytes));
    for (std::uint32_t uiDone = 0; uiDone < uiPoints;) {
        const std::uint32_t uiPart =
            PieceAt(block->GetDataOffset() + data.m_ullPosition, ullRecordBytes, uiPoints - uiDone);
        EncodePart(plan, definition, source, uiPart, pBuffer);
        const std::uint64_t ullBytes = uiPart * ullRecordBytes;
        if (!WriteBytesIntoBlock(data.m_llBlockIndex, data.m_ullPosition, ullBytes, pBuffer)) return false;
        uiDone += uiPart;
        data.m_ullPosition += ullBytes;
        data.m_ullDataBytes = block->GetDataBytes();
        data.m_ullDataBytesPresent = std::max(data.m_ullDataBytesPresent, data.m_ullPosition);
        const std::uint64_t ullPoints = data.m_ullPosition / ullRecordBytes;
        if (ullPoints > data.m_ullNumberOfPoints) {
            ChangePointCount(*block, ullPoints);
            data.m_ullNumberOfPoints = ullPoints;
        }
    }
    return true;
}

} // namespace SIO
