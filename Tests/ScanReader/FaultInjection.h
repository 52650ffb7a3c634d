// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lets one call of the C library, or one allocation, fail: the nth from now. Works in executables that link
// this file's source with the wrapped calls of its CMakeLists; nothing else in the process is changed. For
// one thread.
#pragma once

#include <functional>
#include <ostream>

namespace Support {

enum class Call
{
    Allocation, ///< operator new, in every form
    Open,
    Fdopen,
    Fstat,
    Lseek,
    Fseeko,
    Ftello,
    Fread,
    Fwrite,
    Fclose
};

inline constexpr Call s_allCalls[] = {Call::Allocation, Call::Open,   Call::Fdopen, Call::Fstat,
                                      Call::Lseek,      Call::Fseeko, Call::Ftello, Call::Fread,
                                      Call::Fwrite,     Call::Fclose};

const char* NameOf(Call call);

/// How a failing test names the call.
inline void PrintTo(Call call, std::ostream* out)
{
    *out << NameOf(call);
}

/// While it lives, the nth call from its making on fails, once; n = 0 only counts.
class Fault
{
public:
    Fault(Call call, unsigned n);

    /// Instead of failing, the nth call runs `instead` and then does its work.
    Fault(Call call, unsigned n, std::function<void()> instead);

    ~Fault();
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    /// Calls so far.
    unsigned Count() const;

    /// Whether the nth call has come.
    bool Happened() const;

private:
    unsigned m_n;
    std::function<void()> m_instead;
};

} // namespace Support
