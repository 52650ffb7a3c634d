// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a stored point consists of: the interfaces of one element (position, intensity, ...) and of the
// container that holds the elements of a block. They turn stored bytes into calls of a point modifier and
// back; they know neither the file nor the record a point ends up in. Decoding and encoding change nothing in
// the definition, so one definition may decode on several threads as long as nobody adds elements (a
// container remembers its size when it is first asked).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace GMAT {
template<int N>
struct SquareMatrixT;
} // namespace GMAT

namespace SIO {

class QsbPointModifierI;
class QsbPointGetterI;

/// Kinds of elements, as bits: the content flags of a file are the union of the kinds it carries.
enum PointDataKindT : std::uint32_t
{
    PD_POSITION = 1,
    PD_INTENSITY = 2,
    PD_LEVEL_OF_NOISE = 4,
    PD_GRID = 8,
    PD_COLOR = 16
};

/// One element of a stored point.
class PointDefinitionI
{
public:
    virtual ~PointDefinitionI() = default;

    /// Writes the element's GetSizeInBytes() bytes for `point` to `pszDestBuffer`; null there is reported and
    /// nothing is written.
    virtual void Encode(const QsbPointGetterI& point, char* pszDestBuffer) const = 0;

    /// Reads GetSizeInBytes() bytes at `pszSrcBuffer` and passes the element's values to `modifier`; null
    /// there is reported and nothing is passed. `transformation` maps positions, raw ones excepted.
    virtual void Decode(QsbPointModifierI& modifier, const char* pszSrcBuffer,
                        const GMAT::SquareMatrixT<4>& transformation) const = 0;

    /// Bytes that the element takes in a stored point.
    virtual std::size_t GetSizeInBytes() const = 0;

    /// The element's kind, or the union of the kinds of a container's elements.
    virtual std::uint32_t GetAvailablePointData() const = 0;

    /// The code that a header entry names the element's encoding with.
    virtual std::uint32_t GetTypeCode() const = 0;
};

/// The elements of a stored point in the order of their bytes: ascending by kind, and among equal kinds in
/// the order in which they were added. Duplicate kinds all take bytes; decoding passes all of them, so the
/// last one wins.
class PointDefinitionContainerI : public PointDefinitionI
{
public:
    /// Takes over one element. Null is reported and ignored.
    virtual void Add(std::unique_ptr<PointDefinitionI> poPointDefinition) = 0;

    /// Deletes all elements.
    virtual void Clear() = 0;

    /// Number of elements.
    virtual std::size_t GetCount() const = 0;

    /// Element `i` in the order of the bytes, null beyond the last one. Stays owned by the container.
    virtual const PointDefinitionI* GetElement(std::size_t i) const = 0;
};

} // namespace SIO
