// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Gives the bytes of an input to code that opens files by their path: a file in memory, filled anew for each
// input. Linux only, as the fuzzers are. With it the log is kept still, since hostile files are reported by
// the million.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace Fuzz {

class MemoryFileC
{
public:
    MemoryFileC() : m_iDescriptor(::memfd_create("scan", MFD_CLOEXEC)) { Demand(m_iDescriptor >= 0); }
    MemoryFileC(const MemoryFileC&) = delete;
    MemoryFileC& operator=(const MemoryFileC&) = delete;
    ~MemoryFileC() { ::close(m_iDescriptor); }

    void Fill(const std::uint8_t* pBytes, std::size_t nBytes)
    {
        Demand(::ftruncate(m_iDescriptor, 0) == 0);
        Demand(::pwrite(m_iDescriptor, pBytes, nBytes, 0) == static_cast<ssize_t>(nBytes));
    }

    std::string GetPath() const { return "/proc/self/fd/" + std::to_string(m_iDescriptor); }

private:
    static void Demand(bool bHolds)
    {
        if (!bHolds) std::abort();
    }

    int m_iDescriptor;
};

inline void KeepLogStill()
{
    BSS::DBG::DbgLogMgrC::instance().getSystemErrorLogger()->setLevel(std::numeric_limits<int>::max());
}

} // namespace Fuzz
