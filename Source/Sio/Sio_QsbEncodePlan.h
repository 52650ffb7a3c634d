// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Encoding whole batches of plain records into stored points: the same bytes as the point definition's
// virtual calls. A plan is compiled once per block, never changes then, and may encode on several threads.
#pragma once

#include "Sio/Sio_InstructionSet.h"
#include "Sio/Sio_QsbRecordLayout.h"

namespace SIO {

class QsbEncodePlanC
{
public:
    /// A plan that is not usable.
    QsbEncodePlanC() = default;

    explicit QsbEncodePlanC(const PointDefinitionContainerI& definition)
        : m_oLayout(MakeRecordLayout(definition))
    {}

    /// Whether the plan can encode; otherwise the definition itself must.
    bool IsUsable() const noexcept { return m_oLayout.tRecordBytes != 0; }

    /// Encodes the `nPoints` records at `pPoints` into as many stored points, back to back at `pDestination`.
    /// `eSet` is not eVirtual.
    void Encode(const QsbPointC* pPoints, std::size_t nPoints, char* pDestination,
                QsbInstructionSetT eSet) const;

private:
    QsbRecordLayoutT m_oLayout;
};

} // namespace SIO
