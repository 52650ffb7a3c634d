// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Asking the processor, once.
#include "Sio/Sio_InstructionSet.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string_view>

namespace SIO {

namespace {

QsbInstructionSetT BestOfMachine() noexcept
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2")) return QsbInstructionSetT::eAvx2;
#endif
    return QsbInstructionSetT::eBaseline;
}

QsbInstructionSetT FirstChoice() noexcept
{
    const char* asked = std::getenv("SCANREADER_SIMD");
    const std::string_view name = asked != nullptr ? asked : "";
    if (name == "virtual") return QsbInstructionSetT::eVirtual;
    if (name == "baseline") return QsbInstructionSetT::eBaseline;
    return BestOfMachine();
}

std::atomic<QsbInstructionSetT>& Choice() noexcept
{
    static std::atomic<QsbInstructionSetT> s_eChoice{FirstChoice()};
    return s_eChoice;
}

} // namespace

QsbInstructionSetT GetInstructionSet() noexcept
{
    return Choice().load(std::memory_order_relaxed);
}

void SetInstructionSet(QsbInstructionSetT eSet) noexcept
{
    Choice().store(std::min(eSet, BestOfMachine()), std::memory_order_relaxed);
}

} // namespace SIO
