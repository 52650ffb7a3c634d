// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The reader core's two handles: a reader of one QSB file and an iterator that walks its points in batches.
// Each operation forwards to the implementation object; a handle without one reports the assertion "0 !=
// poImpl" and returns the code that stands at the operation. Everything else is documented at the
// implementation. Without locks: a reader and its iterators belong to one thread at a time.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Sio/API_Base.h"

#include <boost/filesystem/path.hpp>
#include <cstdint>

namespace GMAT {
template<int N>
struct SquareMatrixT;
} // namespace GMAT

namespace SIO {

class QsbPointIteratorI;

/// Walks the points of a reader in batches of a fixed size.
class QsbReaderIteratorC final : public API::BaseC
{
public:
    /// `uiSize` is the batch size; 0 is reported and becomes 1.
    explicit QsbReaderIteratorC(std::uint32_t uiSize);

    /// Goes back to point 0.
    void Reset();

    /// Whether points remain; also true while the iterator follows no reader. False without an
    /// implementation.
    bool HasMorePoints();

    /// Goes one batch on.
    void Next();

    /// Goes one batch back, to point 0 at the least.
    void Previous();
};

/// Reads one QSB file.
class QsbReaderC final : public API::BaseC
{
public:
    QsbReaderC();

    /// Whether `path` names a file that is a whole block chain.
    static bool IsQsbFile(const boost::filesystem::path& path);

    /// Without an implementation: RC_NOT_FOUND.
    BSS::ResultCodeT Open(const boost::filesystem::path& path, std::uint8_t ucFlag);

    /// Without an implementation: RC_NOT_FOUND and no QSB file.
    BSS::ResultCodeT CheckAndOpen(const boost::filesystem::path& path, std::uint8_t ucFlag, bool& bQsbFile);

    /// Without an implementation: the assertion handler's answer.
    BSS::ResultCodeT Close();

    /// Without an implementation: RC_NOT_FOUND, here and below.
    BSS::ResultCodeT GetDataInfo(std::uint32_t& uiFlags);
    BSS::ResultCodeT GetNumPoints(std::uint32_t& uiPoints);
    BSS::ResultCodeT GetInstrumentHeight(double& dHeight);
    BSS::ResultCodeT GetTransformation(GMAT::SquareMatrixT<4>& matrix);
    BSS::ResultCodeT GetGridSize(std::uint32_t& uiFirst, std::uint32_t& uiSecond);
    BSS::ResultCodeT SeekPoint(std::uint64_t ullIndex);

    /// An iterator without an implementation is reported as "0 != poIteratorImpl": RC_OBJECT_MISSING.
    BSS::ResultCodeT Read(QsbReaderIteratorC& iterator, QsbPointIteratorI& points, std::int32_t& iCount);
};

} // namespace SIO
