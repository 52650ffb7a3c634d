// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The container: opening, interpreting, reading, closing. Writing stands in Sio_QsbWrite.cpp.
#include "Sio/Sio_Qsb.h"

#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Sio/Sio_QsbBlockHeader.h"
#include "Sio/Sio_QsbBlockWalk.h"
#include "Sio/Sio_QsbStrategy.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace SIO {

namespace Hal = BSS::HAL;

namespace {

const char* StreamMode(bool bRead, bool bWrite)
{
    if (bRead && bWrite) return "r+b";
    return bRead ? "rb" : "wb";
}

std::uint64_t NextSession()
{
    static std::atomic<std::uint64_t> s_ullLast{0};
    return ++s_ullLast;
}

/// Whether `ullBytes` at `ullPosition` lie within an area of `ullSize` bytes.
bool IsWithin(std::uint64_t ullPosition, std::uint64_t ullBytes, std::uint64_t ullSize)
{
    return ullPosition <= ullSize && ullBytes <= ullSize - ullPosition;
}

} // namespace

QsbC::~QsbC()
{
    Close();
}

bool QsbC::Open(const std::wstring& path, bool bRead, bool bWrite)
{
    bool bWholeChain = false;
    return OpenOrClose(path, bRead, bWrite, bWholeChain);
}

bool QsbC::OpenToRead(const std::wstring& path, bool& bQsbFile)
{
    bQsbFile = false;
    return OpenOrClose(path, true, false, bQsbFile);
}

bool QsbC::OpenOrClose(const std::wstring& path, bool bRead, bool bWrite, bool& bWholeChain)
{
    if (m_pStream != nullptr || (!bRead && !bWrite)) return false;
    bool bOpened = false;
    try {
        bOpened = OpenChecked(path, bRead, bWrite, bWholeChain);
    } catch (const std::bad_alloc&) {
        // Ends as a refusal.
    }
    if (!bOpened) Close();
    return bOpened;
}

bool QsbC::OpenChecked(const std::wstring& path, bool bRead, bool bWrite, bool& bWholeChain)
{
    m_pStream = Hal::OpenStream(path, StreamMode(bRead, bWrite));
    if (m_pStream == nullptr) return false;
    m_oWindow.Attach(m_pStream);
    m_oBlocks.Clear();
    if (bRead) {
        bWholeChain = WalkBlockChain(m_pStream, m_oWindow, m_oBlocks);
        if (!bWholeChain || !HasSupportedVersion()) return false;
        // Only now: the walk jumps over large data areas, and what was read ahead of them would be for
        // nothing.
        Hal::AdviseSequential(m_pStream);
    }
    if (m_oBlocks.IsEmpty() && !CreateFileHeader()) return false;
    m_strPath = path;
    m_bRead = bRead;
    m_bWrite = bWrite;
    m_ullSession = NextSession();
    return true;
}

bool QsbC::HasSupportedVersion() const
{
    const std::int64_t llHeader = m_oBlocks.Find(QsbFormat::s_uiFileHeaderId);
    if (llHeader < 0) return false;
    const QsbHeaderEntryC* version =
        m_oBlocks.Get(static_cast<std::uint64_t>(llHeader))->FindEntry(QsbFormat::s_uiTagVersion);
    return version != nullptr && QsbFormat::IsSupportedVersion(version->AsUInt32());
}

bool QsbC::Close()
{
    bool bWritten = true;
    if (m_pStream != nullptr) {
        if (m_bWrite) {
            for (const auto& [ullIndex, block] : m_oBlocks.GetSingleBlocks()) {
                if (block.IsHeaderDirty())
                    bWritten = RewriteBlockHeader(static_cast<std::int64_t>(ullIndex)) && bWritten;
            }
        }
        bWritten = std::fclose(m_pStream) == 0 && bWritten;
        m_pStream = nullptr;
        m_oWindow.Attach(nullptr);
        m_strPath.clear();
    }
    m_oBlocks.Clear();
    m_pEncodeBytes.reset();
    m_nEncodeBytes = 0;
    m_bRead = m_bWrite = false;
    m_ullSession = 0;
    return bWritten;
}

bool QsbC::IsQsbFile(const std::wstring& path)
{
    std::FILE* stream = Hal::OpenStream(path, "rb");
    if (stream == nullptr) return false;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closer(stream, &std::fclose);
    StreamWindowC window;
    window.Attach(stream);
    QsbBlockListC blocks;
    return WalkBlockChain(stream, window, blocks);
}

bool QsbC::CreateReadStrategyData(StrategyI& strategy, bool bApplyTransformation, std::int64_t llBlockIndex)
{
    auto* pStrategy = dynamic_cast<QsbStrategyC*>(&strategy);
    bool bCreated = false;
    try {
        bCreated = pStrategy != nullptr && Interpret(*pStrategy, bApplyTransformation, llBlockIndex);
    } catch (const std::bad_alloc&) {
        // Ends as a refusal.
    }
    if (!bCreated) {
        Close();
        if (pStrategy != nullptr) pStrategy->ResetData();
    }
    return bCreated;
}

bool QsbC::Interpret(QsbStrategyC& strategy, bool bApplyTransformation, std::int64_t llBlockIndex)
{
    const std::int64_t llChosen = ChooseBlock(llBlockIndex);
    const QsbBlockC* block = llChosen < 0 ? nullptr : m_oBlocks.Get(static_cast<std::uint64_t>(llChosen));
    if (block == nullptr) return false;
    auto data = std::make_unique<QsbStrategyDataC>(m_ullSession, llChosen);
    if (!InterpretBlockHeader(*block, bApplyTransformation, *data)) return false;
    std::uint64_t ullFileSize = 0;
    if (!Hal::StreamSize(m_pStream, ullFileSize)) return false;
    const std::uint64_t ullBehind = ullFileSize - std::min(ullFileSize, block->GetDataOffset());
    data->m_ullDataBytesPresent = std::min(ullBehind, data->m_ullDataBytes);
    strategy.SetData(std::move(data));
    return true;
}

std::int64_t QsbC::ChooseBlock(std::int64_t llBlockIndex) const noexcept
{
    if (llBlockIndex >= 0) return llBlockIndex;
    const std::int64_t llFound = m_oBlocks.Find(QsbFormat::s_uiPointCloudId);
    return llFound >= 0 ? llFound : m_oBlocks.Find(QsbFormat::s_uiCountedPointCloudId);
}

/// Its block has been asked for before, so it takes no memory.
QsbBlockC* QsbC::BlockOf(const QsbStrategyDataC& data) noexcept
{
    if (data.m_ullSession != m_ullSession) return nullptr;
    return m_oBlocks.Get(static_cast<std::uint64_t>(data.m_llBlockIndex));
}

std::uint32_t QsbC::ReadPoints(StrategyI& strategy, void* pDestination, std::uint32_t uiMaxPoints)
{
    char* const pScratch = static_cast<char*>(pDestination);
    const char* pRecords = nullptr;
    const std::uint32_t uiCount = ViewPoints(strategy, pScratch, uiMaxPoints, pRecords);
    if (uiCount != s_uiReadFailed && uiCount != 0 && pRecords != pScratch) {
        const auto& data = *static_cast<QsbStrategyC&>(strategy).GetData();
        std::memcpy(pScratch, pRecords, uiCount * data.m_oPointDefinition.GetSizeInBytes());
    }
    return uiCount;
}

std::uint32_t QsbC::ViewPoints(StrategyI& strategy, char* pScratch, std::uint32_t uiMaxPoints,
                               const char*& pRecords)
{
    if (m_pStream == nullptr || !m_bRead) return s_uiReadFailed;
    auto* pStrategy = dynamic_cast<QsbStrategyC*>(&strategy);
    if (pStrategy == nullptr) return s_uiReadFailed;
    if (!pStrategy->HasData() && !CreateReadStrategyData(strategy, true, pStrategy->GetBlockIndex())) {
        return s_uiReadFailed;
    }
    QsbStrategyDataC* data = pStrategy->GetData();
    const QsbBlockC* block = data != nullptr ? BlockOf(*data) : nullptr;
    if (block == nullptr) return s_uiReadFailed;

    const std::uint64_t ullDataBytes = block->GetDataBytes();
    const std::uint64_t ullPosition = data->m_ullPosition;
    if (ullPosition >= ullDataBytes) return 0;
    const std::uint64_t ullRecordBytes = data->m_oPointDefinition.GetSizeInBytes();
    const std::uint64_t ullCount =
        std::min<std::uint64_t>(uiMaxPoints, (ullDataBytes - ullPosition) / ullRecordBytes);
    const std::uint64_t ullBytes = ullCount * ullRecordBytes;
    if (ullBytes == 0) return static_cast<std::uint32_t>(ullCount);

    if (!IsWithin(ullPosition, ullBytes, ullDataBytes)) return s_uiReadFailed;
    if (!ReadBytes(block->GetDataOffset() + ullPosition, static_cast<std::size_t>(ullBytes), pScratch,
                   pRecords)) {
        return s_uiReadFailed;
    }
    data->m_ullPosition = ullPosition + ullBytes;
    return static_cast<std::uint32_t>(ullCount);
}

bool QsbC::ReadBytes(std::uint64_t ullOffset, std::size_t nBytes, char* pScratch, const char*& pBytes)
{
    if (nBytes > StreamWindowC::s_nLargest / 2) {
        pBytes = pScratch;
        return m_oWindow.Read(ullOffset, nBytes, pScratch);
    }
    std::size_t nShown = 0;
    pBytes = m_oWindow.View(ullOffset, nBytes, nShown);
    return nShown == nBytes;
}

} // namespace SIO
