// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The reader's operations and the decoding of a batch.
#include "Sio/Sio_QsbReaderImpl.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"
#include "Sio/Sio_QsbStrategy.h"

#include <boost/filesystem/operations.hpp>
#include <boost/make_shared.hpp>
#include <typeinfo>

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\Sio_QsbReaderImpl)";

bool IsThere(const boost::filesystem::path& path)
{
    // In the form in which it is opened, so that what can be opened is there.
    const std::wstring wide = BSS::HAL::LongPath(BSS::HAL::WidePathOf(path));
    boost::system::error_code error;
    return boost::filesystem::exists(boost::filesystem::status(BSS::HAL::FilesystemPath(wide), error));
}

} // namespace

namespace SIO {

QsbReaderImplC::QsbReaderImplC()
    : m_spContainer(boost::make_shared<QsbC>()), m_spStrategy(boost::make_shared<QsbStrategyC>())
{}

QsbReaderImplC::~QsbReaderImplC()
{
    Close();
}

BSS::ResultCodeT QsbReaderImplC::Open(const boost::filesystem::path& path, std::uint8_t ucFlag)
{
    if (!IsThere(path)) return BSS::RC_NOT_FOUND;
    bool bQsbFile = false;
    return CheckAndOpen(path, ucFlag, bQsbFile);
}

BSS::ResultCodeT QsbReaderImplC::CheckAndOpen(const boost::filesystem::path& path, std::uint8_t ucFlag,
                                              bool& bQsbFile)
{
    const bool bOpened = m_spContainer->OpenToRead(BSS::HAL::WidePathOf(path), bQsbFile);
    if (!bQsbFile) return BSS::RC_FAILED;
    if (!IsThere(path)) {
        m_spContainer->Close();
        return BSS::RC_NOT_FOUND;
    }
    if (!bOpened) return BSS::RC_FAILED;
    return m_spContainer->CreateReadStrategyData(*m_spStrategy, ucFlag != 0, -1) ? BSS::RC_OK
                                                                                 : BSS::RC_FAILED;
}

BSS::ResultCodeT QsbReaderImplC::Close()
{
    m_spStrategy->ResetData();
    m_spContainer->Close();
    return BSS::RC_OK;
}

BSS::ResultCodeT QsbReaderImplC::GetDataInfo(std::uint32_t& uiFlags)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    const PointDefinitionContainerI* definition = m_spStrategy->GetPointDefinition();
    if (definition == nullptr) return BSS::RC_FAILED;
    uiFlags = definition->GetAvailablePointData();
    return BSS::RC_OK;
}

BSS::ResultCodeT QsbReaderImplC::GetNumPoints(std::uint32_t& uiPoints)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    // A block of less than 4 GiB holds fewer than 2^32 points.
    uiPoints = static_cast<std::uint32_t>(m_spStrategy->GetNumberOfPoints());
    return BSS::RC_OK;
}

BSS::ResultCodeT QsbReaderImplC::GetInstrumentHeight(double& dHeight)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    dHeight = m_spStrategy->GetInfo().dInstrumentHeight;
    return BSS::RC_OK;
}

BSS::ResultCodeT QsbReaderImplC::GetTransformation(GMAT::Matrix4C& matrix)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    return m_spStrategy->GetTransformation(matrix) ? BSS::RC_OK : BSS::RC_FAILED;
}

BSS::ResultCodeT QsbReaderImplC::GetGridSize(std::uint32_t& uiFirst, std::uint32_t& uiSecond)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    uiFirst = m_spStrategy->GetInfo().auiGridSize[0];
    uiSecond = m_spStrategy->GetInfo().auiGridSize[1];
    return BSS::RC_OK;
}

BSS::ResultCodeT QsbReaderImplC::SeekPoint(std::uint64_t ullIndex)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    return m_spStrategy->Seek(ullIndex) ? BSS::RC_OK : BSS::RC_FAILED;
}

BSS::ResultCodeT QsbReaderImplC::Read(QsbReaderIteratorImplC& iterator, QsbPointIteratorI& points,
                                      std::int32_t& iCount)
{
    if (!m_spContainer->IsOpen()) return BSS::RC_FAILED;
    const boost::shared_ptr<QsbStrategyC> spStrategy = m_spStrategy;
    if (!iterator.BindStrategy(spStrategy)) {
        BSS_ASSERT(false);
        return BSS::RC_FAILED;
    }
    const PointDefinitionContainerI* definition = spStrategy->GetPointDefinition();
    if (definition == nullptr) {
        BSS_ASSERT(false);
        return BSS::RC_FAILED;
    }
    const boost::shared_array<char> spBuffer = iterator.GetBuffer();
    if (spBuffer == nullptr) {
        BSS_ASSERT(false);
        return BSS::RC_FAILED;
    }
    // Several iterators may share the reader: each reads at its own position.
    if (!iterator.SeekStrategy()) {
        // Beyond the last point, as after a change to a reader with fewer: there is nothing to deliver.
        iCount = 0;
        return BSS::RC_OK;
    }
    if (!iterator.CanHoldBatch()) {
        // The buffer is as large as what the file holds, so a batch that it cannot take is not in the file.
        iCount = -1;
        return BSS::RC_OK;
    }
    const char* pRecords = nullptr;
    const std::uint32_t uiRead =
        m_spContainer->ViewPoints(*spStrategy, spBuffer.get(), iterator.GetCapacity(), pRecords);
    iCount = static_cast<std::int32_t>(uiRead);
    Decode(*definition, pRecords, iCount, points);
    return BSS::RC_OK;
}

void QsbReaderImplC::Decode(const PointDefinitionContainerI& definition, const char* pszRecords,
                            std::int32_t iCount, QsbPointIteratorI& points) const
{
    if (iCount <= 0) return;
    GMAT::Matrix4C matrix;
    if (!m_spStrategy->GetTransformation(matrix)) matrix = GMAT::Matrix4C();

    // The plain record is decoded by the batch; any other target, point by point.
    const QsbInstructionSetT eSet = GetInstructionSet();
    const QsbStrategyDataC* data = m_spStrategy->GetData();
    if (typeid(points) == typeid(QsbPointArrayIteratorC) && eSet != QsbInstructionSetT::eVirtual &&
        data != nullptr && data->m_oDecodePlan.IsUsable()) {
        auto& array = static_cast<QsbPointArrayIteratorC&>(points);
        const auto nPoints = static_cast<std::size_t>(iCount);
        data->m_oDecodePlan.Decode(pszRecords, nPoints, matrix, array.GetCursor(), eSet);
        array.Skip(nPoints);
        return;
    }
    const std::size_t nRecordBytes = definition.GetSizeInBytes();
    for (std::int32_t i = 0; i < iCount; ++i) {
        definition.Decode(points.Current(), pszRecords, matrix);
        pszRecords += nRecordBytes;
        points.Advance();
    }
}

} // namespace SIO
