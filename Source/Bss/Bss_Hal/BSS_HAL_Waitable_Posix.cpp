// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A thread that waits puts itself into the list of every handle and sleeps. Whoever sets an event that has a
// list hands the signal over under the lock: he takes the thread out of all its lists and stores its answer,
// so no signal can fall between two threads. Threads sleep on a word of their own, or, if one of
// their handles is a descriptor, in poll with one more descriptor that wakes them. Tests/Models/waitable.pml
// goes through every order of these steps, and has to change with them.
#include "Bss/Bss_Hal/BSS_HAL_Waitable.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Bss/Bss_Hal/BSS_HAL_ThreadControl.h"
#include "Bss/Bss_Hal/BSS_HAL_Tick.h"
#include "Bss/Bss_Hal/BSS_HAL_WaitSlot_Posix.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <linux/futex.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace BSS::HAL {

namespace {

using KindT = WaitAnswerT::Kind;

constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr std::int64_t NO_DEADLINE = INT64_MAX;

constinit thread_local WaiterT* t_waiter = nullptr; // in lists at this moment

// The lock, and the promise that this thread is not ended while it has it.
class WaitGuardC
{
public:
    WaitGuardC() noexcept { WaitLock().lock(); }
    ~WaitGuardC() { WaitLock().unlock(); }
    WaitGuardC(const WaitGuardC&) = delete;
    WaitGuardC& operator=(const WaitGuardC&) = delete;

private:
    EndShieldC m_shield; // first in, last out
};

std::int64_t NowNs() noexcept
{
    std::timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * NANOSECONDS + now.tv_nsec;
}

long Futex(std::atomic<std::uint32_t>* word, int operation, std::uint32_t value,
           const std::timespec* limit) noexcept
{
    static_assert(sizeof *word == sizeof value, "the kernel looks at the bare word");
    return ::syscall(SYS_futex, word, operation | FUTEX_PRIVATE_FLAG, value, limit, nullptr,
                     FUTEX_BITSET_MATCH_ANY);
}

// The descriptor that wakes the calling thread out of poll, made when it is first needed.
class WakeDescriptorC
{
public:
    ~WakeDescriptorC()
    {
        // Forgotten: the thread's later cleanup may wait too, and the number may be somebody else's by then.
        if (m_descriptor >= 0) ::close(std::exchange(m_descriptor, -1));
    }
    int Get() noexcept
    {
        if (m_descriptor < 0 && !TakeFault(FaultT::Descriptor))
            m_descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        return m_descriptor;
    }
    void Drain() const noexcept
    {
        std::uint64_t ignored = 0;
        while (::read(m_descriptor, &ignored, sizeof ignored) > 0) {
        }
    }

private:
    int m_descriptor = -1;
};

thread_local WakeDescriptorC t_wakeDescriptor;

// Ends a thread's wait. Under the lock. The word to wake it by, which may be gone already when that is used;
// the kernel then finds nobody.
std::atomic<std::uint32_t>* Release(WaiterT& waiter, const WaitAnswerT& answer) noexcept
{
    LeaveLists(waiter);
    waiter.answer = answer;
    std::atomic<std::uint32_t>* const word = &waiter.word;
    const int descriptor = waiter.wakeDescriptor;
    if (descriptor >= 0) {
        // The thread comes through the lock before it goes on, so the descriptor is still its own.
        waiter.word.store(WaiterT::RELEASED);
        const std::uint64_t one = 1;
        static_cast<void>(!::write(descriptor, &one, sizeof one));
        return nullptr;
    }
    word->store(WaiterT::RELEASED);
    return word;
}

void Wake(std::atomic<std::uint32_t>* word) noexcept
{
    if (word != nullptr) Futex(word, FUTEX_WAKE, 1, nullptr);
}

std::size_t IndexIn(const WaitNodeT& node) noexcept
{
    return static_cast<std::size_t>(&node - node.waiter->nodes.data());
}

// Under the lock: ends the wait of the first thread in the list, or of all.
std::atomic<std::uint32_t>* ReleaseFirst(WaitSlotT& slot, KindT kind, std::uint32_t error) noexcept
{
    return Release(*slot.first->waiter, {kind, IndexIn(*slot.first), error});
}

void ReleaseAll(WaitSlotT& slot, KindT kind, std::uint32_t error) noexcept
{
    while (slot.first != nullptr)
        Wake(ReleaseFirst(slot, kind, error));
}

enum class SetKindT
{
    Set,
    Pulse
};

// Setting or pulsing an event that threads may wait for.
bool SetWaited(WaitSlotT& slot, WaitHandleT handle, SetKindT kind) noexcept
{
    const EndShieldC shield; // a thread that is out of the list has yet to be woken
    std::atomic<std::uint32_t>* word = nullptr;
    {
        const WaitGuardC guard;
        const std::uint64_t before = slot.word.load();
        if (!IsSlotOf(before, handle)) return false;
        const bool manual = (before & SLOT_MANUAL) != 0;
        const bool waited = slot.first != nullptr;
        if (kind == SetKindT::Pulse) {
            slot.word.fetch_and(~SLOT_SIGNALLED);
        } else if (manual || !waited) {
            slot.word.fetch_or(SLOT_SIGNALLED);
        }
        if (waited && manual) ReleaseAll(slot, KindT::Signalled, 0);
        if (waited && !manual) {
            slot.first->waiter->bHandOn = kind == SetKindT::Set;
            word = ReleaseFirst(slot, KindT::Signalled, 0);
        }
    }
    Wake(word);
    return true;
}

// The threads that wait for one event are those of one wait: looks at everything once, in order.
class WaitC
{
public:
    WaitC(const WaitHandleT* handles, std::size_t count, std::int64_t deadlineNs) noexcept
        : m_handles(handles), m_count(count), m_deadlineNs(deadlineNs)
    {
        m_waiter.handles = handles;
    }

    WaitAnswerT Run() noexcept
    {
        WaitAnswerT answer;
        if (!FindSlots(answer)) return answer;
        for (;;) {
            if (Look(answer)) return answer;
            if (m_deadlineNs == 0) return {KindT::TimedOut, 0, 0};
            if (Enter(answer)) return answer;
            if (m_descriptors == 0) {
                SleepOnWord();
            } else {
                SleepInPoll();
            }
            if (Leave(answer)) return answer;
            // Only a descriptor or the deadline ends a sleep without an answer.
            if (m_deadlineNs != NO_DEADLINE && NowNs() >= m_deadlineNs)
                return Look(answer) ? answer : WaitAnswerT{KindT::TimedOut, 0, 0};
        }
    }

private:
    bool FindSlots(WaitAnswerT& answer) noexcept
    {
        for (std::size_t i = 0; i < m_count; ++i) {
            WaitSlotT* const slot = SlotOf(m_handles[i]);
            const std::uint64_t word = slot != nullptr ? slot->word.load() : 0;
            if (slot == nullptr || !IsSlotOf(word, m_handles[i])) {
                answer = {KindT::Failed, i, WAIT_ERROR_INVALID_HANDLE};
                return false;
            }
            m_waiter.slots[i] = slot;
            if ((word & SLOT_DESCRIPTOR) == 0) continue;
            m_polled[m_descriptors] = {slot->descriptor, POLLIN, 0};
            m_polledIndex[m_descriptors++] = i;
        }
        if (m_descriptors == 0) return true;
        m_waiter.wakeDescriptor = t_wakeDescriptor.Get();
        m_polled[m_descriptors] = {m_waiter.wakeDescriptor, POLLIN, 0};
        if (m_waiter.wakeDescriptor >= 0) return true;
        answer = {KindT::Failed, 0, WAIT_ERROR_NO_MEMORY};
        return false;
    }

    // Takes the first signal that there is.
    bool Look(WaitAnswerT& answer) noexcept
    {
        std::size_t polled = 0;
        bool asked = false;
        for (std::size_t i = 0; i < m_count; ++i) {
            if (polled < m_descriptors && m_polledIndex[polled] == i) {
                if (!asked) ::poll(m_polled.data(), m_descriptors, 0);
                asked = true;
                const short events = m_polled[polled++].revents;
                if ((events & POLLNVAL) != 0) answer = {KindT::Failed, i, WAIT_ERROR_INVALID_HANDLE};
                if ((events & POLLNVAL) == 0 && events != 0) answer = {KindT::Signalled, i, 0};
                if (events != 0) return true;
            } else if (TakeSignal(*m_waiter.slots[i], m_handles[i])) {
                answer = {KindT::Signalled, i, 0};
                return true;
            }
        }
        return false;
    }

    // Into every list; a signal that has come meanwhile, or a handle that is gone, ends the wait here.
    bool Enter(WaitAnswerT& answer) noexcept
    {
        const WaitGuardC guard;
        m_waiter.word.store(WaiterT::WAITING);
        m_waiter.bHandOn = false;
        for (std::size_t i = 0; i < m_count; ++i) {
            WaitSlotT& slot = *m_waiter.slots[i];
            const std::uint64_t word = slot.word.fetch_or(SLOT_WAITED);
            EnterList(m_waiter, i);
            const bool open = IsSlotOf(word, m_handles[i]);
            if (open && !TakeSignal(slot, m_handles[i])) continue;
            LeaveLists(m_waiter);
            answer = {open ? KindT::Signalled : KindT::Failed, i, open ? 0 : WAIT_ERROR_INVALID_HANDLE};
            return true;
        }
        t_waiter = &m_waiter;
        return false;
    }

    void SleepOnWord() noexcept
    {
        const std::timespec until = {m_deadlineNs / NANOSECONDS, m_deadlineNs % NANOSECONDS};
        const std::timespec* const limit = m_deadlineNs == NO_DEADLINE ? nullptr : &until;
        while (m_waiter.word.load() == WaiterT::WAITING) {
            if (Futex(&m_waiter.word, FUTEX_WAIT_BITSET, WaiterT::WAITING, limit) != 0 && errno == ETIMEDOUT)
                return;
        }
    }

    void SleepInPoll() noexcept
    {
        const std::int64_t left = m_deadlineNs == NO_DEADLINE ? 0 : m_deadlineNs - NowNs();
        const std::timespec limit = {left > 0 ? left / NANOSECONDS : 0, left > 0 ? left % NANOSECONDS : 0};
        ::ppoll(m_polled.data(), m_descriptors + 1, m_deadlineNs == NO_DEADLINE ? nullptr : &limit, nullptr);
    }

    bool Leave(WaitAnswerT& answer) noexcept
    {
        // Without descriptors the answer is complete, and nobody else knows of this wait any more.
        const bool released = m_descriptors == 0 && m_waiter.word.load() == WaiterT::RELEASED;
        if (!released) {
            const WaitGuardC guard;
            if (m_waiter.word.load() == WaiterT::WAITING) LeaveLists(m_waiter);
        }
        t_waiter = nullptr;
        if (m_descriptors != 0) t_wakeDescriptor.Drain();
        if (m_waiter.word.load() != WaiterT::RELEASED) return false;
        answer = m_waiter.answer;
        return true;
    }

    const WaitHandleT* const m_handles;
    const std::size_t m_count;
    const std::int64_t m_deadlineNs;
    WaiterT m_waiter;
    std::size_t m_descriptors = 0;
    std::array<pollfd, MAX_WAIT_HANDLES + 1> m_polled;
    std::array<std::size_t, MAX_WAIT_HANDLES> m_polledIndex;
};

WaitAnswerT Wait(const WaitHandleT* handles, std::size_t count, std::int64_t deadlineNs) noexcept
{
    if (count == 0 || count > MAX_WAIT_HANDLES) return {KindT::Failed, 0, WAIT_ERROR_INVALID_PARAMETER};
    const int saved = errno;
    const WaitAnswerT answer = WaitC(handles, count, deadlineNs).Run();
    errno = saved;
    return answer;
}

// Sets without the lock when nobody waits.
template<bool ALWAYS_WRITES>
bool Set(WaitHandleT handle) noexcept
{
    WaitSlotT* const slot = SlotOf(handle);
    if (slot == nullptr) return false;
    std::uint64_t word = slot->word.load();
    for (;;) {
        if (!IsSlotOf(word, handle) || (word & SLOT_DESCRIPTOR) != 0) return false;
        if ((word & SLOT_WAITED) != 0) return SetWaited(*slot, handle, SetKindT::Set);
        if (!ALWAYS_WRITES && (word & SLOT_SIGNALLED) != 0) return true;
        if (slot->word.compare_exchange_weak(word, word | SLOT_SIGNALLED)) return true;
    }
}

WaitHandleT Open(std::uint64_t flags, int descriptor) noexcept
{
    if (TakeFault(FaultT::Event)) return NO_WAIT_HANDLE;
    const WaitGuardC guard;
    WaitHandleT handle = NO_WAIT_HANDLE;
    return OpenSlot(flags, descriptor, handle) != nullptr ? handle : NO_WAIT_HANDLE;
}

} // namespace

WaitHandleT MakeWaitEvent(ResetMode mode, bool signalled, const wchar_t*) noexcept
{
    return Open((mode == ResetMode::Manual ? SLOT_MANUAL : 0) | (signalled ? SLOT_SIGNALLED : 0), -1);
}

WaitHandleT MakeNativeWaitable(NativeHandleT native) noexcept
{
    return native < 0 ? NO_WAIT_HANDLE : Open(SLOT_DESCRIPTOR, static_cast<int>(native));
}

bool SetWaitEvent(WaitHandleT handle) noexcept
{
    return Set<true>(handle);
}

bool SetWaitEventIfClear(WaitHandleT handle) noexcept
{
    return Set<false>(handle);
}

bool ResetWaitEvent(WaitHandleT handle) noexcept
{
    WaitSlotT* const slot = SlotOf(handle);
    if (slot == nullptr) return false;
    std::uint64_t word = slot->word.load();
    do {
        if (!IsSlotOf(word, handle) || (word & SLOT_DESCRIPTOR) != 0) return false;
    } while (!slot->word.compare_exchange_weak(word, word & ~SLOT_SIGNALLED));
    return true;
}

bool PulseWaitEvent(WaitHandleT handle) noexcept
{
    WaitSlotT* const slot = SlotOf(handle);
    if (slot == nullptr || (slot->word.load() & SLOT_DESCRIPTOR) != 0) return false;
    return SetWaited(*slot, handle, SetKindT::Pulse);
}

bool CloseWaitHandle(WaitHandleT handle) noexcept
{
    WaitSlotT* const slot = SlotOf(handle);
    if (slot == nullptr) return false;
    const WaitGuardC guard;
    if (!IsSlotOf(slot->word.load(), handle)) return false;
    // Closed first: the threads that are released find it so. The lock keeps the slot from being used again.
    FreeSlot(*slot);
    ReleaseAll(*slot, KindT::Failed, WAIT_ERROR_INVALID_HANDLE);
    return true;
}

bool IsWaitHandleOpen(WaitHandleT handle) noexcept
{
    WaitSlotT* const slot = SlotOf(handle);
    if (slot == nullptr) return false;
    const WaitGuardC guard; // the slot's descriptor belongs to the word
    const std::uint64_t word = slot->word.load();
    if (!IsSlotOf(word, handle)) return false;
    // A descriptor may have been closed under its handle.
    return (word & SLOT_DESCRIPTOR) == 0 || ::fcntl(slot->descriptor, F_GETFD) >= 0;
}

WaitAnswerT WaitForAny(const WaitHandleT* handles, std::size_t count, std::uint32_t limitMs) noexcept
{
    if (limitMs == 0) return Wait(handles, count, 0);
    if (limitMs == WAIT_WITHOUT_LIMIT) return Wait(handles, count, NO_DEADLINE);
    return Wait(handles, count, NowNs() + static_cast<std::int64_t>(limitMs) * 1000000);
}

WaitAnswerT WaitForAnyUntil(const WaitHandleT* handles, std::size_t count, std::uint64_t dueTick) noexcept
{
    constexpr std::uint64_t LAST_TICK = INT64_MAX / 1000000 - 1;
    if (dueTick <= TickCount64()) return Wait(handles, count, 0);
    return Wait(handles, count,
                dueTick > LAST_TICK ? NO_DEADLINE : static_cast<std::int64_t>(dueTick) * 1000000);
}

void AbandonWait() noexcept
{
    if (t_waiter == nullptr) return;
    WaiterT& waiter = *std::exchange(t_waiter, nullptr);
    WaitLock().lock();
    LeaveLists(waiter);
    const bool bHandOn = waiter.bHandOn;
    WaitLock().unlock();
    if (bHandOn) SetWaitEvent(waiter.handles[waiter.answer.index]);
}

} // namespace BSS::HAL
