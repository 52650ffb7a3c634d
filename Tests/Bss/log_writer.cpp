// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A process that logs, for the tests that need more than one:
//
//   bss_log_writer DIRECTORY lines NAME COUNT LIMIT
//       COUNT lines "NAME <number> <checksum>" to "shared.txt", LIMIT bytes to a file
//   bss_log_writer DIRECTORY endless COUNT
//       lines to "killed.txt" without end; flushes after every COUNT and then prints how many are flushed
//   bss_log_writer DIRECTORY exit
//       a line to "ErrorLog.txt" and one that waits, then returns
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Support/LogLines.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace BSS::DBG;

namespace {

int WriteLines(const std::string& name, unsigned count, std::uint64_t limit)
{
    DbgLogFileConsumerC consumer("shared", L"shared.txt", limit);
    consumer.setOlderFiles(900);
    for (unsigned i = 0; i < count; ++i)
        consumer.Log(LEVEL_INFO, "%s", Support::CheckedLine(name, i));
    // On a busy machine it may not be our turn for as long as a flush has patience.
    bool flushed = false;
    for (int i = 0; i < 20 && !flushed; ++i)
        flushed = consumer.flush();
    return flushed ? 0 : 1;
}

[[noreturn]] void WriteEndlessly(unsigned count)
{
    DbgLogFileConsumerC consumer("killed", L"killed.txt", 0);
    for (unsigned i = 0;; ++i) {
        consumer.Log(LEVEL_INFO, "%s", Support::CheckedLine("k", i));
        if (i % count != count - 1) continue;
        if (!consumer.flush()) std::exit(1);
        std::printf("%u\n", i + 1);
        std::fflush(stdout);
    }
}

int WriteAndReturn()
{
    DbgLogMgrC::instance().getSystemErrorLogger()->Log(LEVEL_ERROR, "at once");
    DbgLogMgrC::instance().getSystemErrorLogger()->Log(LEVEL_INFO, "at the end");
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) return 2;
    const std::string what = argv[2];
    BSS::OS::SetLogDirectory(BSS::HAL::WidePath(argv[1]));
    if (what == "lines" && argc == 6)
        return WriteLines(argv[3], static_cast<unsigned>(std::atoi(argv[4])),
                          static_cast<std::uint64_t>(std::atoll(argv[5])));
    if (what == "endless" && argc == 4) WriteEndlessly(static_cast<unsigned>(std::atoi(argv[3])));
    return what == "exit" ? WriteAndReturn() : 2;
}
