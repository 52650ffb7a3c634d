// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Numbers as text and back, the same whatever the user's locale. Text is the shortest that reads back as the
// same number.
#pragma once

#include "Tools/Qsb/Tool_NumberType.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tool {

/// The number of type `eType` that the whole of `text` stands for; a sign, and for floating types an
/// exponent, "nan" and "inf", may be there. Integers may be written as floating numbers without a fraction.
/// Nothing when the text is no number or the type cannot hold it.
std::optional<double> ParseNumber(std::string_view text, NumberTypeT eType) noexcept;

/// A whole number without a sign.
std::optional<std::uint64_t> ParseCount(std::string_view text) noexcept;

/// Appends the number: digits alone for integers, "nan", "inf" and "-inf" for what is not finite.
void AppendNumber(std::string& text, double dValue, NumberTypeT eType);

} // namespace Tool
