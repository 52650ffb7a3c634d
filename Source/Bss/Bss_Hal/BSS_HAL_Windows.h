// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The one place that includes the system header of Windows, trimmed and without its macros `min` and `max`.
// Only the Win32 halves of the platform layer include this file.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
