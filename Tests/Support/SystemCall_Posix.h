// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// For programs whose system calls go through a test: linked with --wrap=syscall, they define __wrap_syscall.
#pragma once

#include <array>
#include <cstdarg>

extern "C" long __real_syscall(long number, ...);

namespace Support {

/// What the caller passed behind the number, as the C library takes it: six words, whatever they hold.
using CallValuesT = std::array<long, 6>;

inline CallValuesT CallValuesOf(std::va_list arguments)
{
    CallValuesT values;
    for (long& value : values)
        value = va_arg(arguments, long);
    return values;
}

inline long MakeSystemCall(long number, const CallValuesT& values)
{
    return __real_syscall(number, values[0], values[1], values[2], values[3], values[4], values[5]);
}

} // namespace Support
