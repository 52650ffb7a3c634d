// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Packing blocks. Where the next head is, is known when this one has been read; a processor that waits for
// that at each block takes longer for small ones than reading the file does. Most blocks are as long as the
// last one or the one before that, so the first loops go on as if they were, and look.
#include "Sio/Sio_QsbPackedChain.h"

#include "Sio/Sio_LittleEndian.h"
#include "Sio/Sio_QsbBlockTally.h"
#include "Sio/Sio_QsbPackedWriter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace SIO {

using namespace QsbPackedCode;

namespace {

constexpr std::size_t s_nHeadBytes = QsbFormat::s_nBlockHeadBytes;
constexpr std::size_t s_nEntryBytes = QsbFormat::s_nEntryBytes;
constexpr std::size_t s_nAnyNumber = ~std::size_t{0}; ///< of entries

// Of a block's head.
std::uint32_t IdOf(const char* pHead) noexcept
{
    return LoadLittleEndian<std::uint32_t>(pHead);
}
std::uint64_t SizesOf(const char* pHead) noexcept
{
    return LoadLittleEndian<std::uint64_t>(pHead + 4);
}

// Of the sizes in it: the header's is below, the data's above.
std::uint32_t HeaderOf(std::uint64_t ullSizes) noexcept
{
    return static_cast<std::uint32_t>(ullSizes);
}
std::uint32_t DataOf(std::uint64_t ullSizes) noexcept
{
    return static_cast<std::uint32_t>(ullSizes >> 32);
}
std::int64_t BlockBytes(std::uint64_t ullSizes) noexcept
{
    return static_cast<std::int64_t>(s_nHeadBytes) + HeaderOf(ullSizes) + DataOf(ullSizes);
}

/// In what the entries of two blocks with as many of them differ: not at all where the words are 0.
struct DifferenceT
{
    std::uint64_t ullTypesAndTags = 0;
    std::uint64_t ullValues = 0;

    DifferenceT(const char* pEntries, const char* pOthers, std::size_t nEntries) noexcept
    {
        const auto different = [](const char* p, const char* q) {
            return LoadLittleEndian<std::uint64_t>(p) ^ LoadLittleEndian<std::uint64_t>(q);
        };
        for (std::size_t i = 0; i < nEntries * s_nEntryBytes; i += s_nEntryBytes) {
            ullTypesAndTags |= different(pEntries + i, pOthers + i);
            ullValues |= different(pEntries + i + s_nTypeAndTagBytes, pOthers + i + s_nTypeAndTagBytes);
        }
    }
};

} // namespace

/// How far the shown bytes have been packed.
struct QsbPackedChainC::ProgressT
{
    const char* pEnd;  ///< of the shown bytes
    std::int64_t llAt; ///< where the next head is, counted from there: below zero, or beyond what is shown
    std::uint64_t ullCount; ///< of the blocks in the list

    const char* Head() const noexcept { return pEnd + llAt; }
    bool Shows(std::size_t nBytes) const noexcept { return llAt <= -static_cast<std::int64_t>(nBytes); }
    void Pass(std::int64_t llBlockBytes) noexcept
    {
        llAt += llBlockBytes;
        ++ullCount;
    }
};

bool QsbPackedChainC::AppendShown(QsbBlockTallyC& tally, const char* pShown, std::size_t nShown,
                                  std::uint64_t& ullOffset)
{
    if (nShown < s_nHeadBytes) return true;
    if (ullOffset != m_ullEndOffset) EndChunk();
    if (!m_bOpen && !BeginChunk(tally, ullOffset)) return false;
    const auto llShown = static_cast<std::int64_t>(nShown);
    ProgressT progress{pShown + nShown, -llShown, tally.GetCount()};
    bool bRoom = true;
    do {
        PackAlike(progress, tally);
        PackKnown(progress, tally);
        PackEqual(progress);
        if (m_oWriter.IsFull() && progress.Shows(s_nHeadBytes)) {
            CountBlocks(tally, progress.ullCount);
            bRoom = BeginChunk(tally, ullOffset + static_cast<std::uint64_t>(progress.llAt + llShown));
        }
    } while (bRoom && PackNext(progress, tally));
    ullOffset += static_cast<std::uint64_t>(progress.llAt + llShown);
    m_ullEndOffset = ullOffset;
    CountBlocks(tally, progress.ullCount);
    DropEmptyChunk(tally);
    return bRoom;
}

/// Empty blocks that are equal to the last one: none of them is left to another chunk.
void QsbPackedChainC::PackEqual(ProgressT& progress) noexcept
{
    const ModelT& empty = (*m_pModels)[NumberFor(0)];
    if (empty.ullSizes != 0) return;
    while (progress.Shows(s_nHeadBytes) && SizesOf(progress.Head()) == 0 &&
           m_oWriter.PutIfLast(empty.uiNumber, IdOf(progress.Head()))) {
        progress.Pass(empty.llBlockBytes);
    }
}

/// Blocks that have the sizes of the last model, or of the one before it.
void QsbPackedChainC::PackAlike(ProgressT& progress, const QsbBlockTallyC& tally) noexcept
{
    switch (m_pLike->uiEntries) {
    case 0:
        return PackHeadsAlike(progress, tally);
    case 1:
        return PackEntriesAlike<1>(progress, tally);
    case 2:
        return PackEntriesAlike<2>(progress, tally);
    default:
        return;
    }
}

/// Without entries.
void QsbPackedChainC::PackHeadsAlike(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept
{
    const ModelT like = *m_pLike;
    const ModelT other = m_pOther->uiEntries == 0 ? *m_pOther : like;
    QsbPackedWriterC writer = m_oWriter;
    ProgressT progress = rProgress;
    const auto pack = [&](const ModelT& model, std::uint32_t uiId) {
        if (!writer.PutIfLast(model.uiNumber, uiId)) {
            if (writer.IsFull() || tally.IsNews(uiId)) return false;
            writer.PutOther(model.uiNumber, uiId, model.uiId);
        }
        progress.Pass(model.llBlockBytes);
        return true;
    };
    // By copies, so that the compiler need not keep the others in memory.
    const auto packIds = [&](const ModelT& first, const ModelT& second) {
        QsbPackedWriterC writerOfIds = writer;
        ProgressT progressOfIds = progress;
        PackIds(progressOfIds, writerOfIds, first, second);
        writer = writerOfIds;
        progress = progressOfIds;
    };
    while (progress.Shows(s_nHeadBytes)) {
        const std::uint32_t uiId = IdOf(progress.Head());
        const std::uint64_t ullSizes = SizesOf(progress.Head());
        // The same for both, so that where it goes on depends on what is guessed, not on what is read.
        if (ullSizes == like.ullSizes) {
            if (!pack(like, uiId)) break;
            if (uiId != like.uiId && !writer.IsRepeating()) packIds(other, like);
        } else if (ullSizes == other.ullSizes) {
            if (!pack(other, uiId)) break;
        } else {
            break;
        }
    }
    rProgress = progress;
    m_oWriter = writer;
}

/// Blocks like two models in turn, or like the second one alone, as long as their identifiers differ.
void QsbPackedChainC::PackIds(ProgressT& rProgress, QsbPackedWriterC& rWriter, const ModelT& first,
                              const ModelT& second) noexcept
{
    ProgressT progress = rProgress;
    QsbPackedWriterC::IdsC ids(rWriter);
    const auto pack = [&](const ModelT& model) {
        if (!progress.Shows(s_nHeadBytes) || SizesOf(progress.Head()) != model.ullSizes) return false;
        const std::uint32_t uiId = IdOf(progress.Head());
        if (QsbBlockTallyC::IsWatched(uiId) || !ids.Put(uiId, model.uiId)) return false;
        progress.Pass(model.llBlockBytes);
        return true;
    };
    if (rWriter.IsFull()) return;
    while (pack(second)) {
    }
    bool bAlone = ids.GetCount() != 0;
    while (!bAlone && pack(first) && pack(second)) {
    }
    rWriter.PutIds(bAlone ? second.uiNumber : first.uiNumber, second.uiNumber, ids);
    rProgress = progress;
}

/// With so many entries.
template<std::size_t nEntries>
void QsbPackedChainC::PackEntriesAlike(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept
{
    const ModelT like = *m_pLike;
    QsbPackedWriterC writer = m_oWriter;
    ProgressT progress = rProgress;
    while (progress.Shows(s_nHeadBytes + nEntries * s_nEntryBytes) && !writer.IsFull()) {
        const std::uint32_t uiId = IdOf(progress.Head());
        const char* const pEntries = progress.Head() + s_nHeadBytes;
        const DifferenceT difference(pEntries, like.pEntries, nEntries);
        if (SizesOf(progress.Head()) != like.ullSizes || difference.ullTypesAndTags != 0 ||
            tally.IsNews(uiId))
            break;
        if (!writer.PutIfLast(like.uiNumber, uiId, difference.ullValues))
            writer.PutDifferent(like.uiNumber, uiId, like.uiId, 0, 0, difference.ullValues != 0, pEntries,
                                nEntries);
        progress.Pass(like.llBlockBytes);
    }
    rProgress = progress;
    m_oWriter = writer;
}

/// Blocks for which there is a model but for their data, of any sizes; not too many of them, since it may go
/// on with others.
void QsbPackedChainC::PackKnown(ProgressT& progress, const QsbBlockTallyC& tally) noexcept
{
    switch (m_pLike->uiEntries) {
    case 0:
        return PackKnownOf<0>(progress, tally);
    case 1:
        return PackKnownOf<1>(progress, tally);
    case 2:
        return PackKnownOf<2>(progress, tally);
    default:
        return PackKnownOf<s_nAnyNumber>(progress, tally);
    }
}

/// With so many entries.
template<std::size_t nWanted>
void QsbPackedChainC::PackKnownOf(ProgressT& rProgress, const QsbBlockTallyC& tally) noexcept
{
    constexpr int nMost = 256;
    const ModelsT& models = *m_pModels;
    QsbPackedWriterC writer = m_oWriter;
    ProgressT progress = rProgress;
    for (int i = 0; i < nMost && progress.Shows(s_nHeadBytes) && !writer.IsFull(); ++i) {
        const std::uint32_t uiId = IdOf(progress.Head());
        const std::uint64_t ullSizes = SizesOf(progress.Head());
        const ModelT& model = models[NumberFor(ullSizes)];
        if (HeaderOf(ullSizes) != HeaderOf(model.ullSizes) || tally.IsNews(uiId)) break;
        if (ullSizes == 0 && model.ullSizes != 0) break; // empty ones are told by an empty model
        const std::size_t nEntries = nWanted == s_nAnyNumber ? model.uiEntries : nWanted;
        if (model.uiEntries == ModelT::s_uiNone || nEntries != model.uiEntries) break;
        if (!progress.Shows(s_nHeadBytes + nEntries * s_nEntryBytes)) break;
        const char* const pEntries = progress.Head() + s_nHeadBytes;
        const DifferenceT difference(pEntries, model.pEntries, nEntries);
        if (difference.ullTypesAndTags != 0) break;
        const std::uint64_t ullOther = (ullSizes ^ model.ullSizes) | difference.ullValues;
        if (!writer.PutIfLast(model.uiNumber, uiId, ullOther))
            writer.PutDifferent(model.uiNumber, uiId, model.uiId, DataOf(ullSizes), DataOf(model.ullSizes),
                                difference.ullValues != 0, pEntries, nEntries);
        progress.Pass(static_cast<std::int64_t>(s_nHeadBytes + nEntries * s_nEntryBytes) + DataOf(ullSizes));
    }
    rProgress = progress;
    m_oWriter = writer;
}

/// The next block, whatever it is; the chunk has room for it. One whose data alone differ from its model's
/// becomes the model, so that a length that was rare does not keep the number from one that comes often.
/// False when it is not shown whole or cannot be packed.
bool QsbPackedChainC::PackNext(ProgressT& progress, QsbBlockTallyC& tally) noexcept
{
    if (!progress.Shows(s_nHeadBytes)) return false;
    const char* const pHead = progress.Head();
    const char* const pEntries = pHead + s_nHeadBytes;
    const std::uint64_t ullSizes = SizesOf(pHead);
    const std::uint32_t uiHeaderBytes = HeaderOf(ullSizes);
    if (uiHeaderBytes % s_nEntryBytes != 0 || uiHeaderBytes > s_nMostHeaderBytes) return false;
    if (!progress.Shows(s_nHeadBytes + uiHeaderBytes)) return false;

    const std::uint32_t uiId = IdOf(pHead);
    const std::size_t nEntries = uiHeaderBytes / s_nEntryBytes;
    ModelT& model = (*m_pModels)[NumberFor(ullSizes)];
    const bool bKnown = ullSizes == model.ullSizes;
    const DifferenceT difference(pEntries, model.pEntries, bKnown ? nEntries : 0);
    if (!bKnown || difference.ullTypesAndTags != 0) {
        const auto uiNumber = static_cast<std::uint8_t>(&model - m_pModels->data());
        const char* const pKept = m_oWriter.PutModel(uiNumber, uiId, pHead, s_nHeadBytes + uiHeaderBytes);
        model = {
            ullSizes, BlockBytes(ullSizes), pKept + s_nHeadBytes, uiId, static_cast<std::uint16_t>(nEntries),
            uiNumber};
    } else if (!m_oWriter.PutIfLast(model.uiNumber, uiId, difference.ullValues)) {
        m_oWriter.PutDifferent(model.uiNumber, uiId, model.uiId, 0, 0, difference.ullValues != 0, pEntries,
                               nEntries);
    }
    if (&model != m_pLike) m_pOther = std::exchange(m_pLike, &model);
    tally.Note(uiId, progress.ullCount);
    progress.Pass(model.llBlockBytes);
    return true;
}

/// The number that a model with these sizes has, or would have.
std::size_t QsbPackedChainC::NumberFor(std::uint64_t ullSizes) noexcept
{
    constexpr std::uint64_t ullMix = 0x9E3779B97F4A7C15;
    return std::min<std::size_t>(ullSizes * ullMix >> 59, s_nModels - 1);
}

void QsbPackedChainC::CountBlocks(QsbBlockTallyC& tally, std::uint64_t ullCount) noexcept
{
    tally.SetCount(ullCount);
    if (!m_bOpen) return;
    ChunkT& chunk = m_vecChunks.back();
    chunk.ullBlocks = ullCount - chunk.ullFirstIndex;
    chunk.nBytes = m_oWriter.CountFrom(chunk.pBytes);
}

/// What it takes is asked for at once: piece by piece, a file could come out above the limit.
bool QsbPackedChainC::BeginChunk(QsbBlockTallyC& tally, std::uint64_t ullOffset)
{
    EndChunk();
    const bool bPiece = static_cast<std::size_t>(m_pPieceEnd - m_oWriter.GetEnd()) < s_nChunkRoom;
    const std::size_t nPieceBytes = m_pFirstPiece == nullptr ? s_nFirstPieceBytes : s_nLargeMemoryBytes;
    if (!tally.Take(sizeof(ChunkT) + (bPiece ? nPieceBytes : 0))) return false;
    if (bPiece) TakePiece(nPieceBytes);
    if (m_pModels == nullptr) m_pModels = std::make_unique<ModelsT>();
    m_vecChunks.push_back({tally.GetCount(), ullOffset, 0, m_oWriter.GetEnd(), 0});
    m_pModels->fill(ModelT());
    m_pLike = m_pOther = m_pModels->data();
    m_oWriter = QsbPackedWriterC(m_oWriter.GetEnd(), s_nChunkBytes);
    m_bOpen = true;
    return true;
}

void QsbPackedChainC::TakePiece(std::size_t nBytes)
{
    char* pPiece = nullptr;
    if (m_pFirstPiece == nullptr) {
        m_pFirstPiece.reset(new char[nBytes]); // whose bytes stay as they are
        pPiece = m_pFirstPiece.get();
    } else {
        m_vecPieces.push_back(MakeLargeMemory());
        pPiece = static_cast<char*>(m_vecPieces.back().get());
    }
    m_oWriter = QsbPackedWriterC(pPiece, 0);
    m_pPieceEnd = pPiece + nBytes;
}

void QsbPackedChainC::RepeatLast(QsbBlockTallyC& tally, std::uint64_t ullBlocks) noexcept
{
    m_oWriter.Repeat(ullBlocks);
    m_ullEndOffset += ullBlocks * s_nHeadBytes;
    CountBlocks(tally, tally.GetCount() + ullBlocks);
}

void QsbPackedChainC::RemoveLast(QsbBlockTallyC& tally, std::uint64_t ullOffset) noexcept
{
    EndChunk();
    m_ullEndOffset = ullOffset;
    --m_vecChunks.back().ullBlocks;
    DropEmptyChunk(tally);
}

/// The last chunk, when nothing is in it.
void QsbPackedChainC::DropEmptyChunk(QsbBlockTallyC& tally) noexcept
{
    if (m_vecChunks.empty() || m_vecChunks.back().ullBlocks != 0) return;
    EndChunk();
    m_vecChunks.pop_back();
    tally.GiveBack(sizeof(ChunkT));
}

const QsbPackedChainC::ChunkT* QsbPackedChainC::Find(std::uint64_t ullIndex) const noexcept
{
    const auto behind =
        std::upper_bound(m_vecChunks.begin(), m_vecChunks.end(), ullIndex,
                         [](std::uint64_t i, const ChunkT& chunk) { return i < chunk.ullFirstIndex; });
    if (behind == m_vecChunks.begin()) return nullptr;
    const ChunkT& chunk = *std::prev(behind);
    return ullIndex - chunk.ullFirstIndex < chunk.ullBlocks ? &chunk : nullptr;
}

void QsbPackedChainC::Swap(QsbPackedChainC& other) noexcept
{
    std::swap(m_vecChunks, other.m_vecChunks);
    std::swap(m_pFirstPiece, other.m_pFirstPiece);
    std::swap(m_vecPieces, other.m_vecPieces);
    std::swap(m_pPieceEnd, other.m_pPieceEnd);
    std::swap(m_ullEndOffset, other.m_ullEndOffset);
    std::swap(m_bOpen, other.m_bOpen);
    std::swap(m_pModels, other.m_pModels);
    std::swap(m_pLike, other.m_pLike);
    std::swap(m_pOther, other.m_pOther);
    std::swap(m_oWriter, other.m_oWriter);
}

} // namespace SIO
