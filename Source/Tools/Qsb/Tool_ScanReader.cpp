// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Container, strategy and decoding without the reader core's conversion to the plain record.
#include "Tools/Qsb/Tool_ScanReader.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"

#include <algorithm>
#include <bit>
#include <fmt/format.h>

namespace Tool {

namespace {

bool CanBeOpened(const std::wstring& path)
{
    std::FILE* stream = BSS::HAL::OpenStream(path, "rb");
    if (stream != nullptr) std::fclose(stream);
    return stream != nullptr;
}

ScanFormatC FormatOf(const SIO::PointDefinitionContainerI& definition, std::uint32_t uiBlockId)
{
    ScanFormatC format{0, 0, 0, 0, 0, uiBlockId};
    for (std::size_t i = 0; i < definition.GetCount(); ++i) {
        const SIO::PointDefinitionI& element = *definition.GetElement(i);
        switch (element.GetAvailablePointData()) {
        case SIO::PD_POSITION:
            format.uiPosition = element.GetTypeCode();
            break;
        case SIO::PD_INTENSITY:
            format.uiIntensity = element.GetTypeCode();
            break;
        case SIO::PD_LEVEL_OF_NOISE:
            format.uiNoise = element.GetTypeCode();
            break;
        case SIO::PD_GRID:
            format.uiGrid = element.GetTypeCode();
            break;
        default:
            format.uiColor = element.GetTypeCode();
            break;
        }
    }
    return format;
}

} // namespace

ScanReaderC::ScanReaderC(const std::string& path) : m_strPath(path)
{
    const std::wstring wide = BSS::HAL::WidePath(path);
    if (!CanBeOpened(wide))
        throw ToolErrorC(s_iFailed, fmt::format("{}: cannot be opened for reading", path));
    if (!m_oContainer.Open(wide, true, false)) {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: not a QSB file, or its block chain is damaged", path));
    }
    if (!m_oContainer.CreateReadStrategyData(m_oStrategy, false, -1)) {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: no usable point-cloud block", path));
    }
    const auto ullIndex = static_cast<std::uint64_t>(m_oStrategy.GetData()->m_llBlockIndex);
    m_oFormat = FormatOf(*m_oStrategy.GetPointDefinition(), m_oContainer.GetBlocks().Get(ullIndex)->GetId());
}

std::uint32_t ScanReaderC::GetContentFlags() const
{
    return m_oStrategy.GetPointDefinition()->GetAvailablePointData();
}

std::uint64_t ScanReaderC::GetNumberOfReadablePoints() const
{
    const std::uint64_t ullHeld =
        m_oStrategy.GetData()->m_ullDataBytesPresent / m_oStrategy.GetPointDefinition()->GetSizeInBytes();
    return std::min(ullHeld, GetNumberOfPoints());
}

std::size_t ScanReaderC::GetNumberOfHiddenElements() const
{
    return m_oStrategy.GetPointDefinition()->GetCount() -
           static_cast<std::size_t>(std::popcount(GetContentFlags()));
}

std::uint64_t ScanReaderC::GetNumberOfPointClouds() const
{
    std::uint64_t ullCount = 0;
    m_oContainer.GetBlocks().ForEach([&](const SIO::QsbBlockC& block, std::uint64_t) {
        const bool bPointCloud = block.GetId() == SIO::QsbFormat::s_uiPointCloudId ||
                                 block.GetId() == SIO::QsbFormat::s_uiCountedPointCloudId;
        if (bPointCloud) ullCount += block.GetRunLength();
        return true;
    });
    return ullCount;
}

bool ScanReaderC::HasGridSize() const noexcept
{
    const auto& grid = GetInfo().auiGridSize;
    return grid[0] != 0 && grid[1] != 0;
}

ScanReaderC::StoredT ScanReaderC::ReadStored()
{
    const std::size_t nRecordBytes = m_oStrategy.GetPointDefinition()->GetSizeInBytes();
    // What the file does not hold is not allocated for, and what it holds of a torn batch is still delivered.
    const auto uiWanted = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(s_uiBatch, GetNumberOfReadablePoints() - m_ullRead));
    if (m_ullRead == GetNumberOfPoints()) return {};
    m_vecRaw.resize(uiWanted * nRecordBytes);
    if (uiWanted == 0 || m_oContainer.ReadPoints(m_oStrategy, m_vecRaw.data(), uiWanted) != uiWanted) {
        throw ToolErrorC(s_iDamaged, fmt::format("{}: the data is torn, {} of {} points are readable",
                                                 m_strPath, m_ullRead, GetNumberOfPoints()));
    }
    m_ullRead += uiWanted;
    return {m_vecRaw.data(), uiWanted, nRecordBytes};
}

void ScanReaderC::Read(std::vector<ScanPointC>& points)
{
    points.clear();
    const StoredT stored = ReadStored();
    points.resize(stored.nPoints);
    const SIO::PointDefinitionContainerI& definition = *m_oStrategy.GetPointDefinition();
    ScanPointIteratorC iterator(points.data());
    const GMAT::Matrix4C unused;
    for (std::size_t i = 0; i < stored.nPoints; ++i, iterator.Advance())
        definition.Decode(iterator.Current(), stored.pFirst + i * stored.nStride, unused);
}

std::size_t ScanReaderC::GetOffsetOf(SIO::PointDataKindT eKind) const
{
    const SIO::PointDefinitionContainerI& definition = *m_oStrategy.GetPointDefinition();
    std::size_t nFound = 0;
    std::size_t nOffset = 0;
    for (std::size_t i = 0; i < definition.GetCount(); ++i) {
        const SIO::PointDefinitionI& element = *definition.GetElement(i);
        // Of several elements of a kind the last one counts.
        if (element.GetAvailablePointData() == eKind) nFound = nOffset;
        nOffset += element.GetSizeInBytes();
    }
    return nFound;
}

void ScanReaderC::Rewind()
{
    (void)m_oStrategy.Seek(0); // Point 0 exists in every block.
    m_ullRead = 0;
}

} // namespace Tool
