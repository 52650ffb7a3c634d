// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The lock word: bit 31 is set while the mutex is held; bits 0 to 19 count the threads that wait. Bit 30 says
// that one of those has been woken and not yet looked: whoever unlocks meanwhile need not wake another. Bits
// 20 to 29 count the threads that have released the mutex and have yet to signal the event; the destructor
// waits for those, as a woken thread may take, release and destroy the mutex before they are done with it.
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_WakeEvent.h"

#include <thread>

namespace BSS::TSK {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Tsk\BSS_TSK_Mutex)";

constexpr std::uint32_t WAITER = 0x00000001u;
constexpr std::uint32_t WAITERS = 0x000FFFFFu;
constexpr std::uint32_t SIGNALLER = 0x00100000u;
constexpr std::uint32_t SIGNALLERS = 0x3FF00000u;
constexpr std::uint32_t WOKEN = 0x40000000u;

// Pauses in a row. Together about as many as a short critical section takes; more only burn the owner's time.
constexpr int LONGEST_PAUSE = 32;

} // namespace

MutexC::MutexC() noexcept = default;

MutexC::~MutexC()
{
    // Acquire pairs with the release by which a signaller leaves: the event is closed after its last use.
    while ((m_lockWord.load(std::memory_order_acquire) & SIGNALLERS) != 0)
        std::this_thread::yield();
    HAL::CloseWakeEvent(m_event.exchange(nullptr));
}

void MutexC::ReportNotOwner()
{
    BSS_ASSERT(!"Mutex unlocked by a thread that does not own it!");
}

// Takes the mutex if it is free at this moment. A thread that is counted as waiting is so no longer then, and
// the woken one, if there is one, is taken to be this one: at worst one more is woken than need be.
bool MutexC::TryAcquire(Caller caller) noexcept
{
    std::uint32_t word = m_lockWord.load(std::memory_order_relaxed);
    while ((word & LOCKED) == 0) {
        const std::uint32_t left = caller == Caller::Waiting ? (word - WAITER) & ~WOKEN : word;
        if (m_lockWord.compare_exchange_weak(word, left | LOCKED, std::memory_order_acquire,
                                             std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

bool MutexC::SpinToAcquire(Caller caller) noexcept
{
    // Looking less and less often leaves the word to its owner, who often wants it again at once.
    for (int pauses = 1; pauses <= LONGEST_PAUSE; pauses *= 2) {
        if (TryAcquire(caller)) return true;
        for (int i = 0; i < pauses; ++i)
            HAL::SpinPause();
    }
    return TryAcquire(caller);
}

void MutexC::AcquireSlowly()
{
    if (SpinToAcquire(Caller::New)) return;
    // The event comes first: whoever sees the waiter in the word finds the event. Release pairs with the
    // acquire load in Release.
    HAL::WakeEvent* const event = Event();
    m_lockWord.fetch_add(WAITER, std::memory_order_release);
    while (!SpinToAcquire(Caller::Waiting)) {
        // Nobody counts as woken from here on. If the mutex is held at this moment, its owner will see that
        // and wake a thread; if it is not, nobody might, and going to sleep would be for ever.
        if ((m_lockWord.fetch_and(~WOKEN, std::memory_order_relaxed) & LOCKED) != 0)
            HAL::AwaitWakeEvent(event);
    }
}

// Frees a word that holds more than the locked bit.
void MutexC::Release() noexcept
{
    std::uint32_t word = m_lockWord.load(std::memory_order_relaxed);
    bool wake = false;
    std::uint32_t released = 0;
    do {
        wake = (word & WAITERS) != 0 && (word & WOKEN) == 0;
        released = (word & ~LOCKED) + (wake ? WOKEN + SIGNALLER : 0);
    } while (!m_lockWord.compare_exchange_weak(word, released, std::memory_order_acq_rel,
                                               std::memory_order_relaxed));
    if (!wake) return;
    HAL::SignalWakeEvent(m_event.load(std::memory_order_acquire));
    m_lockWord.fetch_sub(SIGNALLER, std::memory_order_release);
}

HAL::WakeEvent* MutexC::Event()
{
    HAL::WakeEvent* event = m_event.load(std::memory_order_acquire);
    if (event != nullptr) return event;
    HAL::WakeEvent* const made = HAL::OpenWakeEvent();
    if (made == nullptr) throw SysServiceErrorC("no event for a contended mutex", RC_SERVICE_FAILED);
    // Of several threads that come here at once one event stays; acq_rel so that its making is visible to
    // all.
    if (m_event.compare_exchange_strong(event, made, std::memory_order_acq_rel)) return made;
    HAL::CloseWakeEvent(made);
    return event;
}

} // namespace BSS::TSK
