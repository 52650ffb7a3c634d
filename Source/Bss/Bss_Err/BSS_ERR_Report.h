// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How code anywhere in the framework reports a broken precondition (assertion) or a grave inconsistency
// (panic). A report is logged, handed to the registered panic handler, and then returns: it never throws,
// aborts or breaks into a debugger (only the allocation of its text may throw std::bad_alloc), so the caller
// carries on with its own failure path. What a log consumer throws while it writes the report ends there and
// is told on the debugger output; what the panic handler throws is the handler's affair and passes through.
// Reports may come from any thread; one that comes while its thread is inside a log consumer goes to the
// debugger output only, and no handler is told.
//
// This header stands on the ground floor and includes nothing of ours. The two functions are defined far
// above, over the log manager, in a source file whose header is this one: strings, locks and logging itself
// can report without knowing the logger.
#pragma once

#include <cstdint>

namespace BSS::ERR {

/// Logs "<<ASSERT at file(line): expression>>" at level 6 to the system error logger and asks the panic
/// handler registry. Integer conversions in the expression print `first` and `second`; any other conversion
/// in it is printed as it stands. Returns the registered handler's answer, true when there is none.
bool AssertFailed(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                  std::int32_t line);

/// Logs "<<PANIC at file(line): format - type 0x1200001>>" at level 7 and tells the registered handler.
/// `type` is not used: the reported type is always PANIC_TYPE.
void Panic(const char* format, std::uint32_t type, std::uint32_t first, std::uint32_t second,
           const char* file, std::int32_t line);

} // namespace BSS::ERR

// The file name in a report is fixed text, the same on every platform and in every build folder. Each source
// file that reports defines it, in its anonymous namespace, as
//     constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\<folder>\<file stem>)";

/// Reports `condition` by its own source text when it is false. A message alone is written as !"text".
#define BSS_ASSERT(condition)                                                                                \
    ((condition) ? static_cast<void>(0)                                                                      \
                 : static_cast<void>(::BSS::ERR::AssertFailed(#condition, 0, 0, BSS_SOURCE_NAME, __LINE__)))

/// As BSS_ASSERT, with a line number that is part of the log contract instead of the current one.
#define BSS_ASSERT_AT(condition, line)                                                                       \
    ((condition) ? static_cast<void>(0)                                                                      \
                 : static_cast<void>(::BSS::ERR::AssertFailed(#condition, 0, 0, BSS_SOURCE_NAME, (line))))

/// Reports a grave inconsistency. `format` may use two integer conversions, for `first` and `second`.
#define BSS_PANIC(format, type, first, second)                                                               \
    ::BSS::ERR::Panic((format), (type), (first), (second), BSS_SOURCE_NAME, __LINE__)
