// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The container of a stored point's elements, and the factory that makes an element from a header entry. Its
// elements are always sorted by kind. Decoding is the meaning of the format: one virtual call per element and
// point.
#pragma once

#include "Sio/SIO_QsbPointDefinition.h"

#include <vector>

namespace SIO {

class PointDefinitionC final : public PointDefinitionContainerI
{
public:
    PointDefinitionC() = default;
    PointDefinitionC(const PointDefinitionC&) = delete;
    PointDefinitionC& operator=(const PointDefinitionC&) = delete;

    /// Encodes a whole stored point, element by element.
    void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const override;

    /// Decodes a whole stored point. A container whose first element is not a position is reported and
    /// decodes nothing.
    void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                const GMAT::SquareMatrixT<4>& transformation) const override;

    /// Size of a stored point.
    std::size_t GetSizeInBytes() const override;

    std::uint32_t GetAvailablePointData() const override;

    /// A container has no type code: reports that and returns 0.
    std::uint32_t GetTypeCode() const override;

    void Add(std::unique_ptr<PointDefinitionI> poPointDefinition) override;
    void Clear() override;
    std::size_t GetCount() const override { return m_vecPointDefs.size(); }
    const PointDefinitionI* GetElement(std::size_t i) const override;

    /// Makes the element of `kind` with the encoding `typeCode`; transforming or raw, for positions. Null for
    /// an unknown kind, and for an encoding that the kind does not have, which is also reported.
    static std::unique_ptr<PointDefinitionI> CreateElement(std::uint32_t kind, std::uint32_t typeCode,
                                                           bool bApplyTransformation = true);

    /// Whether CreateElement can make this element; reports nothing.
    static bool CanCreateElement(std::uint32_t kind, std::uint32_t typeCode);

private:
    std::vector<std::unique_ptr<PointDefinitionI>> m_vecPointDefs;
    mutable std::size_t m_tSizeInBytes = 0; ///< 0: not computed yet
};

} // namespace SIO
