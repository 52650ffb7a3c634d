// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Following a strategy and sizing the buffer by what its file holds.
#include "Sio/Sio_QsbReaderIteratorImpl.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Sio/Sio_QsbStrategy.h"

#include <algorithm>

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\Sio_QsbReaderImpl)";

boost::shared_array<char> MakeBuffer(std::size_t nBytes)
{
    SIO::CacheLineAllocatorT<char> allocator;
    const auto free = [allocator, nBytes](char* pBytes) mutable { allocator.deallocate(pBytes, nBytes); };
    // Every batch counts its use, so the count has a line of its own as well.
    return boost::shared_array<char>(allocator.allocate(std::max<std::size_t>(nBytes, 1)), free, allocator);
}

} // namespace

namespace SIO {

QsbReaderIteratorImplC::QsbReaderIteratorImplC(std::uint32_t uiSize) : m_uiSize(uiSize)
{
    if (uiSize != 0) return;
    BSS_ASSERT(!"Not allowed iterator size");
    m_uiSize = 1;
}

void QsbReaderIteratorImplC::Reset()
{
    SetIteratorPos(0);
}

bool QsbReaderIteratorImplC::HasMorePoints() const
{
    const boost::shared_ptr<QsbStrategyC> spStrategy = m_wpStrategy.lock();
    return spStrategy == nullptr || spStrategy->GetNumberOfPoints() > m_ullIteratorPos;
}

void QsbReaderIteratorImplC::Next()
{
    SetIteratorPos(m_ullIteratorPos + m_uiSize);
}

void QsbReaderIteratorImplC::Previous()
{
    SetIteratorPos(m_ullIteratorPos - m_uiSize);
}

bool QsbReaderIteratorImplC::SetIteratorPos(std::uint64_t ullPos)
{
    m_ullIteratorPos = static_cast<std::int64_t>(ullPos) < 0 ? 0 : ullPos;
    return SeekStrategy();
}

bool QsbReaderIteratorImplC::SeekStrategy()
{
    const boost::shared_ptr<QsbStrategyC> spStrategy = m_wpStrategy.lock();
    if (spStrategy == nullptr || m_ullIteratorPos > spStrategy->GetNumberOfPoints()) return false;
    return spStrategy->Seek(m_ullIteratorPos);
}

bool QsbReaderIteratorImplC::BindStrategy(const boost::shared_ptr<QsbStrategyC>& spStrategy)
{
    if (spStrategy == nullptr) return false;
    const bool bBound = m_wpStrategy.lock() == spStrategy;
    const PointDefinitionContainerI* poPointDefinition = spStrategy->GetPointDefinition();
    BSS_ASSERT(0 != poPointDefinition);
    if (poPointDefinition == nullptr) return false;
    const std::size_t tSizeInBytes = poPointDefinition->GetSizeInBytes();
    BSS_ASSERT(tSizeInBytes > 0);
    if (tSizeInBytes == 0) return false;

    if (!bBound) {
        m_wpStrategy = spStrategy;
        BSS_ASSERT(SetIteratorPos(m_ullIteratorPos));
    }
    // A bound strategy may have opened another file since: the buffer follows its block.
    const QsbStrategyDataC* data = spStrategy->GetData();
    const std::uint64_t ullPresent = data != nullptr ? data->m_ullDataBytesPresent / tSizeInBytes : 0;
    const auto uiCapacity = static_cast<std::uint32_t>(std::min<std::uint64_t>(m_uiSize, ullPresent));
    if (bBound && m_spBuffer != nullptr && uiCapacity == m_uiCapacity && tSizeInBytes == m_tRecordBytes)
        return true;
    m_uiCapacity = 0;
    m_spBuffer.reset();
    m_spBuffer = MakeBuffer(uiCapacity * tSizeInBytes);
    m_uiCapacity = uiCapacity;
    m_tRecordBytes = tSizeInBytes;
    return true;
}

bool QsbReaderIteratorImplC::CanHoldBatch() const
{
    const boost::shared_ptr<QsbStrategyC> spStrategy = m_wpStrategy.lock();
    const QsbStrategyDataC* data = spStrategy != nullptr ? spStrategy->GetData() : nullptr;
    if (data == nullptr || data->m_ullPosition >= data->m_ullDataBytes) return true;
    const std::uint64_t ullLeft = (data->m_ullDataBytes - data->m_ullPosition) / m_tRecordBytes;
    return std::min<std::uint64_t>(m_uiSize, ullLeft) <= m_uiCapacity;
}

} // namespace SIO
