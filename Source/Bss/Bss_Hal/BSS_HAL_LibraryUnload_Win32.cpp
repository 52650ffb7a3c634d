// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Linked into a DLL, gives back what the statically linked thread support of MinGW-w64 (winpthreads 10) would leave in
// the process at every unload: its slot of thread-local memory, and two handles for the thread that unloads. A process
// has 1088 slots, so a host that loads and unloads a thousand times would find none. What threads that are still running
// hold is given back only by a thread's end, while the DLL is loaded.
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

/// What winpthreads has the loader call when a thread ends. The only way in that it offers.
extern "C" PIMAGE_TLS_CALLBACK __xl_f;

namespace {

constexpr DWORD s_dwSlots = 1088; ///< TLS_MINIMUM_AVAILABLE and the system's 1024 further ones

/// The slots that code of this DLL has taken, a bit each. Ready before the first constructor runs.
constinit std::atomic<std::uint64_t> s_aullTaken[s_dwSlots / 64];

/// False when the whole process ends, where other threads may have died with locks held and nothing needs to be tidy.
constinit bool s_bUnloading = true;

std::uint64_t BitOf(DWORD dwSlot)
{
    return std::uint64_t{1} << (dwSlot % 64);
}

template<typename FunctionT>
FunctionT SystemFunction(const char* pName)
{
    const FARPROC pFound = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), pName);
    return std::bit_cast<FunctionT>(pFound);
}

extern "C" DWORD WINAPI TakeSlot()
{
    const DWORD dwSlot = SystemFunction<DWORD(WINAPI*)()>("TlsAlloc")();
    if (dwSlot < s_dwSlots) s_aullTaken[dwSlot / 64] |= BitOf(dwSlot);
    return dwSlot;
}

extern "C" BOOL WINAPI GiveSlotBack(DWORD dwSlot)
{
    if (dwSlot < s_dwSlots) s_aullTaken[dwSlot / 64] &= ~BitOf(dwSlot);
    return SystemFunction<BOOL(WINAPI*)(DWORD)>("TlsFree")(dwSlot);
}

/// Made first and destroyed last, since every other destructor may still use thread-local memory.
class SlotKeeperC
{
public:
    SlotKeeperC() = default;
    ~SlotKeeperC()
    {
        if (!s_bUnloading) return;
        __xl_f(nullptr, DLL_THREAD_DETACH, nullptr);
        for (DWORD dwSlot = 0; dwSlot < s_dwSlots; ++dwSlot) {
            if ((s_aullTaken[dwSlot / 64] & BitOf(dwSlot)) != 0) GiveSlotBack(dwSlot);
        }
    }
    SlotKeeperC(const SlotKeeperC&) = delete;
    SlotKeeperC& operator=(const SlotKeeperC&) = delete;
};

[[gnu::init_priority(101)]] SlotKeeperC s_oSlotKeeper;

} // namespace

// All calls to the system's two functions in this DLL go through these pointers, which the import library has otherwise.
extern "C" {
[[gnu::used]] DWORD(WINAPI* __imp_TlsAlloc)() = &TakeSlot;
[[gnu::used]] BOOL(WINAPI* __imp_TlsFree)(DWORD) = &GiveSlotBack;

/// The system's call when the DLL comes and goes; before the destructors.
BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID pProcessEnds)
{
    if (dwReason == DLL_PROCESS_DETACH) s_bUnloading = pProcessEnds == nullptr;
    return TRUE;
}
}
