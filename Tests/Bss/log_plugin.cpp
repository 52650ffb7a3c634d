// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A shared library with base services of its own, for the test that loads and unloads one.
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

/// Logs two lines to "plugin.txt" in the directory. The second one waits.
extern "C" [[gnu::visibility("default")]] void ScanReaderLogPluginLog(const char* directory, const char* text)
{
    using namespace BSS::DBG;
    BSS::OS::SetLogDirectory(BSS::HAL::WidePath(directory));
    const auto consumer = DbgLogMgrC::instance().getConsumer("plugin");
    consumer->Log(LEVEL_ERROR, "%s", text);
    consumer->Log(LEVEL_INFO, "%s", text);
}
