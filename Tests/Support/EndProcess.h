// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The end of a process in which nothing can be relied on any more.
#pragma once

namespace Support {

/// Ends this process at once, without any lock: even while another thread is in exit(), which on Windows
/// would keep every function of the C runtime from it that ends processes.
[[noreturn]] void EndProcess(int exitCode) noexcept;

} // namespace Support
