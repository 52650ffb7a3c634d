// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The cases, one per source file. Each makes its files, measures, prints its tables and removes its files.
#pragma once

#include "Bench_Harness.h"

namespace Bench {

void RunRead(const OptionsT& options);
void RunBatches(const OptionsT& options);
void RunSizes(const OptionsT& options);
void RunMemory(const OptionsT& options);
void RunOpen(const OptionsT& options);
void RunWrite(const OptionsT& options);
void RunThreads(const OptionsT& options);
void RunExport(const OptionsT& options);
void RunPeers(const OptionsT& options);

/// The child of the memory case: reads a scan and prints how much memory the process ever had, in KiB.
int ReadAndPrintPeakMemory(const char* pszPath);

} // namespace Bench
