// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Forwarding, and the one answer of an empty handle.
#include "Sio/Sio_QsbReader.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbReaderImpl.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\Sio_QsbReader)";

template<typename ImplT>
ImplT* CheckedImpl(const API::BaseC& handle)
{
    auto* poImpl = dynamic_cast<ImplT*>(handle.GetImpl());
    BSS_ASSERT(0 != poImpl);
    return poImpl;
}

} // namespace

namespace SIO {

QsbReaderIteratorC::QsbReaderIteratorC(std::uint32_t uiSize)
{
    SetImpl(new QsbReaderIteratorImplC(uiSize));
}

void QsbReaderIteratorC::Reset()
{
    if (auto* poImpl = CheckedImpl<QsbReaderIteratorImplC>(*this)) poImpl->Reset();
}

bool QsbReaderIteratorC::HasMorePoints()
{
    auto* poImpl = CheckedImpl<QsbReaderIteratorImplC>(*this);
    return poImpl != nullptr && poImpl->HasMorePoints();
}

void QsbReaderIteratorC::Next()
{
    if (auto* poImpl = CheckedImpl<QsbReaderIteratorImplC>(*this)) poImpl->Next();
}

void QsbReaderIteratorC::Previous()
{
    if (auto* poImpl = CheckedImpl<QsbReaderIteratorImplC>(*this)) poImpl->Previous();
}

QsbReaderC::QsbReaderC()
{
    SetImpl(new QsbReaderImplC);
}

bool QsbReaderC::IsQsbFile(const boost::filesystem::path& path)
{
    return QsbC::IsQsbFile(BSS::HAL::WidePathOf(path));
}

BSS::ResultCodeT QsbReaderC::Open(const boost::filesystem::path& path, std::uint8_t ucFlag)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->Open(path, ucFlag) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::CheckAndOpen(const boost::filesystem::path& path, std::uint8_t ucFlag,
                                          bool& bQsbFile)
{
    bQsbFile = false;
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->CheckAndOpen(path, ucFlag, bQsbFile) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::Close()
{
    auto* poImpl = dynamic_cast<QsbReaderImplC*>(GetImpl());
    if (poImpl == nullptr) {
        return static_cast<BSS::ResultCodeT>(
            BSS::ERR::AssertFailed("0 != poImpl", 0, 0, BSS_SOURCE_NAME, __LINE__));
    }
    return poImpl->Close();
}

BSS::ResultCodeT QsbReaderC::GetDataInfo(std::uint32_t& uiFlags)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->GetDataInfo(uiFlags) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::GetNumPoints(std::uint32_t& uiPoints)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->GetNumPoints(uiPoints) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::GetInstrumentHeight(double& dHeight)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->GetInstrumentHeight(dHeight) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::GetTransformation(GMAT::Matrix4C& matrix)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->GetTransformation(matrix) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::GetGridSize(std::uint32_t& uiFirst, std::uint32_t& uiSecond)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->GetGridSize(uiFirst, uiSecond) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::SeekPoint(std::uint64_t ullIndex)
{
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->SeekPoint(ullIndex) : BSS::RC_NOT_FOUND;
}

BSS::ResultCodeT QsbReaderC::Read(QsbReaderIteratorC& iterator, QsbPointIteratorI& points,
                                  std::int32_t& iCount)
{
    auto* poIteratorImpl = dynamic_cast<QsbReaderIteratorImplC*>(iterator.GetImpl());
    BSS_ASSERT(0 != poIteratorImpl);
    if (poIteratorImpl == nullptr) return BSS::RC_OBJECT_MISSING;
    auto* poImpl = CheckedImpl<QsbReaderImplC>(*this);
    return poImpl != nullptr ? poImpl->Read(*poIteratorImpl, points, iCount) : BSS::RC_NOT_FOUND;
}

} // namespace SIO
