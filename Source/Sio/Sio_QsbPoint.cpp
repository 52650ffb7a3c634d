// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Writing the elements of a point into the plain record.
#include "Sio/Sio_QsbPoint.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Sio/Sio_Truncate.h"

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Sio\Sio_QsbPoint)";

} // namespace

namespace SIO {

bool QsbPointModifierC::HasPoint() const
{
    BSS_ASSERT(0 != m_poQsbPoint);
    return m_poQsbPoint != nullptr;
}

void QsbPointModifierC::SetPosition(const double& x, const double& y, const double& z)
{
    if (!HasPoint()) return;
    m_poQsbPoint->x = x;
    m_poQsbPoint->y = y;
    m_poQsbPoint->z = z;
}

void QsbPointModifierC::SetIntensity(const double& intensity)
{
    if (!HasPoint()) return;
    m_poQsbPoint->intensity = TruncateToLowBits<std::uint16_t>(intensity);
}

void QsbPointModifierC::SetLevelOfNoise(const double& levelOfNoise)
{
    if (!HasPoint()) return;
    m_poQsbPoint->levelOfNoise = TruncateToLowBits<std::uint16_t>(levelOfNoise);
}

void QsbPointModifierC::SetColor(const double& red, const double& green, const double& blue)
{
    if (!HasPoint()) return;
    m_poQsbPoint->red = TruncateToLowBits<std::uint8_t>(red);
    m_poQsbPoint->green = TruncateToLowBits<std::uint8_t>(green);
    m_poQsbPoint->blue = TruncateToLowBits<std::uint8_t>(blue);
}

void QsbPointModifierC::SetGridIndex(const double& first, const double& second)
{
    if (!HasPoint()) return;
    m_poQsbPoint->gridIndex0 = TruncateToLowBits<std::uint32_t>(first);
    m_poQsbPoint->gridIndex1 = TruncateToLowBits<std::uint32_t>(second);
}

} // namespace SIO
