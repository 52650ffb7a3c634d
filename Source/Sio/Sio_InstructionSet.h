// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which machine code decodes and encodes batches of points. All sets give the same bits, so this is a matter
// of speed alone. One choice for the process; it may be read and changed from any thread.
#pragma once

namespace SIO {

enum class QsbInstructionSetT : int
{
    eVirtual,  ///< no plan: point by point, element by element through the point definition
    eBaseline, ///< what every machine of this architecture has
    eAvx2
};

/// What is used from now on: the best that the machine has, or less when the environment variable
/// SCANREADER_SIMD said "virtual" or "baseline" when this was first asked.
QsbInstructionSetT GetInstructionSet() noexcept;

/// Chooses one; what the machine does not have becomes the best that it has. For tests and benchmarks.
void SetInstructionSet(QsbInstructionSetT eSet) noexcept;

} // namespace SIO
