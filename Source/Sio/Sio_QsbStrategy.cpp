// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The strategy answers from its block's data, and with neutral values while there is none.
#include "Sio/Sio_QsbStrategy.h"

#include <utility>

namespace SIO {

void QsbStrategyC::SetPointDefinition(PointDefinitionContainerI* poPointDefinition)
{
    m_poPointDefinition = poPointDefinition;
}

std::uint64_t QsbStrategyC::GetNumberOfPoints() const
{
    const QsbStrategyDataC* data = GetData();
    return data != nullptr ? data->m_ullNumberOfPoints : 0;
}

bool QsbStrategyC::GetBoundingBox(double& minX, double& minY, double& minZ, double& maxX, double& maxY,
                                  double& maxZ) const
{
    const QsbStrategyDataC* data = GetData();
    if (data == nullptr) return false;
    const QsbBoundingBoxC& box = data->m_oInfo.oBoundingBox;
    minX = box.adMin[0];
    minY = box.adMin[1];
    minZ = box.adMin[2];
    maxX = box.adMax[0];
    maxY = box.adMax[1];
    maxZ = box.adMax[2];
    return true;
}

bool QsbStrategyC::Seek(std::uint64_t ullIndex)
{
    QsbStrategyDataC* data = GetData();
    if (data == nullptr || ullIndex > data->m_ullNumberOfPoints) return false;
    data->m_ullPosition = ullIndex * data->m_oPointDefinition.GetSizeInBytes();
    return true;
}

QsbStrategyDataC* QsbStrategyC::GetData() const noexcept
{
    return dynamic_cast<QsbStrategyDataC*>(m_poData.get());
}

void QsbStrategyC::SetData(std::unique_ptr<QsbStrategyDataC> poData) noexcept
{
    m_poPointDefinition = poData != nullptr ? &poData->m_oPointDefinition : nullptr;
    m_poData = std::move(poData);
}

void QsbStrategyC::SetForeignData(std::unique_ptr<StrategyDataI> poData) noexcept
{
    ResetData();
    m_poData = std::move(poData);
}

void QsbStrategyC::ResetData() noexcept
{
    m_poPointDefinition = nullptr;
    m_poData.reset();
}

bool QsbStrategyC::GetTransformation(GMAT::Matrix4C& matrix) const
{
    const QsbStrategyDataC* data = GetData();
    if (data == nullptr) return false;
    matrix = data->m_oInfo.oTransformation;
    return true;
}

const QsbScanInfoC& QsbStrategyC::GetInfo() const noexcept
{
    const QsbStrategyDataC* data = GetData();
    return data != nullptr ? data->m_oInfo : m_oWriteInfo;
}

} // namespace SIO
