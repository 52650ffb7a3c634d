// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which machine code decodes and encodes batches of points. All sets give the same bits, so this is a matter
// of speed alone. One choice for the process; it may be read and changed from any thread.
#pragma once

#include <optional>
#include <string_view>

namespace SIO {

enum class QsbInstructionSetT : int
{
    eVirtual,  ///< no plan: point by point, element by element through the point definition
    ePlain,    ///< batches by a plan, in arithmetic that every machine has
    eBaseline, ///< what every machine of this architecture has
    eAvx2
};

/// The set that the environment variable SCANREADER_SIMD calls "virtual", "plain", "baseline" or "avx2";
/// nothing for any other name.
std::optional<QsbInstructionSetT> InstructionSetNamed(std::string_view name) noexcept;

/// What is used from now on: the best that the machine has, or less when SCANREADER_SIMD named less when this
/// was first asked.
QsbInstructionSetT GetInstructionSet() noexcept;

/// Chooses one; what the machine does not have becomes the best that it has. For tests and benchmarks.
void SetInstructionSet(QsbInstructionSetT eSet) noexcept;

} // namespace SIO
