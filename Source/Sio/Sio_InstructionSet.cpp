// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Asking the processor, once.
#include "Sio/Sio_InstructionSet.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

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
    const QsbInstructionSetT eBest = BestOfMachine();
    return std::min(InstructionSetNamed(asked != nullptr ? asked : "").value_or(eBest), eBest);
}

std::atomic<QsbInstructionSetT>& Choice() noexcept
{
    static std::atomic<QsbInstructionSetT> s_eChoice{FirstChoice()};
    return s_eChoice;
}

} // namespace

std::optional<QsbInstructionSetT> InstructionSetNamed(std::string_view name) noexcept
{
    if (name == "virtual") return QsbInstructionSetT::eVirtual;
    if (name == "plain") return QsbInstructionSetT::ePlain;
    if (name == "baseline") return QsbInstructionSetT::eBaseline;
    if (name == "avx2") return QsbInstructionSetT::eAvx2;
    return std::nullopt;
}

QsbInstructionSetT GetInstructionSet() noexcept
{
    return Choice().load(std::memory_order_relaxed);
}

void SetInstructionSet(QsbInstructionSetT eSet) noexcept
{
    Choice().store(std::min(eSet, BestOfMachine()), std::memory_order_relaxed);
}

} // namespace SIO
