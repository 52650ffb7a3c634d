// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Linked into a shared library, starts the base services when it is loaded and shuts them down when it is
// unloaded. An object file of its own and not part of the static library, where a linker would leave it out.
#include "Bss/BSS_Startup.h"

namespace {

struct AutoStart
{
    AutoStart() { BSS::StartUp(); }
    ~AutoStart() { BSS::ShutDown(); }
    AutoStart(const AutoStart&) = delete;
    AutoStart& operator=(const AutoStart&) = delete;
};

const AutoStart s_autoStart;

} // namespace
