// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What stands behind a wait handle: a slot of a table whose memory is never given back, so that a handle that
// was closed can always be looked up and found closed. The slot's word holds its generation, which every new
// use of the slot changes and which is part of the handle, and the flags. Setting an event that nobody waits
// for and taking a signal that is there are one compare-and-swap on the word. The lists of waiting threads,
// and with them every change while there are any, are guarded by one lock for all slots. For the platform
// layer only.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

namespace BSS::HAL {

// Flags of the word.
inline constexpr std::uint64_t SLOT_OPEN = 1;
inline constexpr std::uint64_t SLOT_SIGNALLED = 2;
inline constexpr std::uint64_t SLOT_WAITED = 4; ///< the list of waiting threads is not empty
inline constexpr std::uint64_t SLOT_MANUAL = 8;
inline constexpr std::uint64_t SLOT_DESCRIPTOR = 16;
inline constexpr int SLOT_GENERATION_SHIFT = 32;

struct WaiterT;

/// One thread in the list of one slot. Not initialised: a wait for one handle should not pay for 62.
struct WaitNodeT
{
    WaiterT* waiter;
    WaitNodeT* previous;
    WaitNodeT* next;
};

struct alignas(64) WaitSlotT
{
    std::atomic<std::uint64_t> word{0};
    int descriptor = -1;
    // Guarded by the lock.
    WaitNodeT* first = nullptr;
    WaitNodeT* last = nullptr;
    WaitSlotT* nextFree = nullptr;
    std::uint32_t index = 0;
};

/// A thread that waits, on its own stack.
struct WaiterT
{
    static constexpr std::uint32_t WAITING = 0;
    static constexpr std::uint32_t RELEASED = 1;

    std::atomic<std::uint32_t> word{WAITING}; ///< what the kernel sleeps on
    int wakeDescriptor = -1;                  ///< written to as well, if the thread sleeps on descriptors
    // Guarded by the lock until the word says RELEASED.
    WaitAnswerT answer;
    std::size_t count = 0;
    bool bHandOn = false; ///< the answer is a signal that another thread must get if this one comes to an end
    const WaitHandleT* handles = nullptr;
    std::array<WaitSlotT*, MAX_WAIT_HANDLES> slots;
    std::array<WaitNodeT, MAX_WAIT_HANDLES> nodes;
};

/// The lock over all lists of waiting threads.
std::mutex& WaitLock() noexcept;

/// A new slot, open, with these flags; null when there is no memory.
WaitSlotT* OpenSlot(std::uint64_t flags, int descriptor, WaitHandleT& handle) noexcept;

/// The slot that the handle names, open or not; null for what never was a handle.
WaitSlotT* SlotOf(WaitHandleT handle) noexcept;

/// Whether the slot's word says that it is open and still the one that the handle names.
bool IsSlotOf(std::uint64_t word, WaitHandleT handle) noexcept;

/// Closes an open slot. Under the lock, under which its list must be emptied too.
void FreeSlot(WaitSlotT& slot) noexcept;

/// Takes a signal, if there is one. False leaves everything as it was.
bool TakeSignal(WaitSlotT& slot, WaitHandleT handle) noexcept;

// Under the lock.
void EnterList(WaiterT& waiter, std::size_t index) noexcept;
void LeaveLists(WaiterT& waiter) noexcept;

/// Takes the calling thread, which is about to be ended, out of every list of waiting threads, and hands on
/// the signal that it has been released with and not returned. Called inside a signal handler; the thread
/// holds no shield and not the lock.
void AbandonWait() noexcept;

} // namespace BSS::HAL
