// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The one place that includes the socket headers of Windows. Only the Win32 halves of the platform layer's
// sockets include this file.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <mstcpip.h>
