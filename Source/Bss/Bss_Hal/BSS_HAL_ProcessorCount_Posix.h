// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A counter of the processor that can be read without the system, where there is one. It counts from an
// unknown start, at an unknown rate. Safe from any thread.
#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <cpuid.h>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <x86intrin.h>
#endif

namespace BSS::HAL {

#if defined(__x86_64__)

inline std::uint64_t ProcessorCount() noexcept
{
    return __rdtsc();
}

/// Whether the system goes by the counter itself, which it does only after it has seen that all processors
/// agree.
inline bool SystemGoesByProcessorCount() noexcept
{
    const int fd =
        ::open("/sys/devices/system/clocksource/clocksource0/current_clocksource", O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    char name[4] = {};
    const bool tsc =
        ::read(fd, name, sizeof name) == sizeof name && std::memcmp(name, "tsc\n", sizeof name) == 0;
    ::close(fd);
    return tsc;
}

/// Whether the counter goes on at one rate, the same on all processors, also while they sleep.
inline bool ProcessorCountIsSteady() noexcept
{
    constexpr unsigned POWER_MANAGEMENT = 0x80000007;
    constexpr unsigned INVARIANT = 1u << 8;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    const bool invariant = __get_cpuid(POWER_MANAGEMENT, &a, &b, &c, &d) != 0 && (d & INVARIANT) != 0;
    return invariant && SystemGoesByProcessorCount();
}

#else

inline std::uint64_t ProcessorCount() noexcept
{
    return 0;
}

inline bool ProcessorCountIsSteady() noexcept
{
    return false;
}

#endif

} // namespace BSS::HAL
