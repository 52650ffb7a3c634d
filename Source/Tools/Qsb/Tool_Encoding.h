// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The encodings of the file format by the number type that each of them stores, which is all that conversions need to
// know of them.
#pragma once

#include "Sio/SIO_QsbPointDefinition.h"
#include "Tools/Qsb/Tool_NumberType.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The type code of an element of kind `eKind` that stores numbers of type `eType`; 0 when the format has none.
std::uint32_t TypeCodeOf(SIO::PointDataKindT eKind, NumberTypeT eType) noexcept;

/// The number type that an element with this type code stores. The code must be one of an element.
NumberTypeT NumberTypeOf(std::uint32_t uiTypeCode) noexcept;

/// The names of the number types that elements of a kind store, in the order of their type codes.
std::vector<std::string> EncodingNames(SIO::PointDataKindT eKind);

/// The number type of that name among those; nothing for another name.
std::optional<NumberTypeT> EncodingNamed(SIO::PointDataKindT eKind, const std::string& name);

} // namespace Tool
