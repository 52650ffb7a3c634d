// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The reader behind the handle: owns the container and the strategy, and turns a batch of stored points into
// calls of a point iterator. Reports failure by result codes alone: RC_FAILED where nothing is open or a
// query fails. Without locks: a reader and its iterators belong to one thread at a time; the shared objects
// are counted atomically, so the last reference may go anywhere.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Sio/API_Base.h"
#include "Sio/Sio_CacheLine.h"

#include <boost/filesystem/path.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>

namespace GMAT {
template<int N>
struct SquareMatrixT;
} // namespace GMAT

namespace SIO {

class PointDefinitionContainerI;
class QsbC;
class QsbPointIteratorI;
class QsbReaderIteratorImplC;
class QsbStrategyC;

class alignas(s_nCacheLineBytes) QsbReaderImplC final : public API::ImplObjectC
{
public:
    QsbReaderImplC();

    /// Closes.
    ~QsbReaderImplC() override;

    /// Opens the file and its point-cloud block. A flag other than 0 maps positions by the file's
    /// transformation when they are read, 0 delivers them as stored. RC_NOT_FOUND when there is no such file;
    /// RC_FAILED when it cannot be read, has no usable point-cloud block, or a file is open already (which
    /// stays open).
    BSS::ResultCodeT Open(const boost::filesystem::path& path, std::uint8_t ucFlag);

    /// As IsQsbFile and then Open, but the block chain is walked once. `bQsbFile` is what IsQsbFile would
    /// have said; when it is false nothing is open. RC_NOT_FOUND here means that the file vanished on the
    /// way.
    BSS::ResultCodeT CheckAndOpen(const boost::filesystem::path& path, std::uint8_t ucFlag, bool& bQsbFile);

    /// Always RC_OK. The reader can open another file then.
    BSS::ResultCodeT Close();

    /// Kinds of elements that the points carry (PointDataKindT bits).
    BSS::ResultCodeT GetDataInfo(std::uint32_t& uiFlags);

    /// Number of points of the block.
    BSS::ResultCodeT GetNumPoints(std::uint32_t& uiPoints);

    /// Instrument height as the header has it, 0.0 when it has none.
    BSS::ResultCodeT GetInstrumentHeight(double& dHeight);

    /// The transformation of the header, the identity when it has none.
    BSS::ResultCodeT GetTransformation(GMAT::SquareMatrixT<4>& matrix);

    /// The two grid values as stored: the largest row index and the largest column index.
    BSS::ResultCodeT GetGridSize(std::uint32_t& uiFirst, std::uint32_t& uiSecond);

    /// Goes to a point of the block, the number of points included. A Read goes by its iterator's position,
    /// not this.
    BSS::ResultCodeT SeekPoint(std::uint64_t ullIndex);

    /// Reads the batch at the iterator's position, which stays, into the points that `points` hands out; it
    /// hands out as many as the iterator's batch size at most. Succeeds with `iCount` -1 when the file does
    /// not hold the batch whole: no point is touched then. RC_FAILED, `iCount` untouched, when nothing is
    /// open.
    BSS::ResultCodeT Read(QsbReaderIteratorImplC& iterator, QsbPointIteratorI& points, std::int32_t& iCount);

private:
    void Decode(const PointDefinitionContainerI& definition, const char* pszRecords, std::int32_t iCount,
                QsbPointIteratorI& points) const;

    boost::shared_ptr<QsbC> m_spContainer;
    boost::shared_ptr<QsbStrategyC> m_spStrategy;
};

} // namespace SIO
