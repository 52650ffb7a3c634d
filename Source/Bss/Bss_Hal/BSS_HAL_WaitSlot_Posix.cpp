// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Hal/BSS_HAL_WaitSlot_Posix.h"

#include <new>

namespace BSS::HAL {

namespace {

constexpr std::size_t SLOTS_PER_CHUNK = 64;
constexpr std::size_t CHUNKS = 4096;

constinit std::mutex s_lock;
constinit std::array<std::atomic<WaitSlotT*>, CHUNKS> s_chunks = {};
// Guarded by the lock.
constinit std::size_t s_usedChunks = 0;
constinit WaitSlotT* s_free = nullptr;

bool AddChunk() noexcept
{
    if (s_usedChunks == CHUNKS) return false;
    auto* const chunk = new (std::nothrow) WaitSlotT[SLOTS_PER_CHUNK];
    if (chunk == nullptr) return false;
    for (std::size_t i = SLOTS_PER_CHUNK; i-- > 0;) {
        chunk[i].index = static_cast<std::uint32_t>(s_usedChunks * SLOTS_PER_CHUNK + i);
        chunk[i].nextFree = s_free;
        s_free = &chunk[i];
    }
    s_chunks[s_usedChunks++].store(chunk, std::memory_order_release); // pairs with SlotOf
    return true;
}

} // namespace

std::mutex& WaitLock() noexcept
{
    return s_lock;
}

WaitSlotT* OpenSlot(std::uint64_t flags, int descriptor, WaitHandleT& handle) noexcept
{
    if (s_free == nullptr && !AddChunk()) return nullptr;
    WaitSlotT* const slot = s_free;
    s_free = slot->nextFree;
    const std::uint64_t generation = slot->word.load(std::memory_order_relaxed) >> SLOT_GENERATION_SHIFT;
    slot->descriptor = descriptor;
    slot->word.store((generation << SLOT_GENERATION_SHIFT) | flags | SLOT_OPEN, std::memory_order_release);
    handle = (generation << SLOT_GENERATION_SHIFT) | (slot->index + 1);
    return slot;
}

WaitSlotT* SlotOf(WaitHandleT handle) noexcept
{
    const std::size_t index = (handle & 0xFFFFFFFF) - 1;
    if (index >= CHUNKS * SLOTS_PER_CHUNK) return nullptr;
    WaitSlotT* const chunk = s_chunks[index / SLOTS_PER_CHUNK].load(std::memory_order_acquire);
    return chunk != nullptr ? &chunk[index % SLOTS_PER_CHUNK] : nullptr;
}

bool IsSlotOf(std::uint64_t word, WaitHandleT handle) noexcept
{
    return (word & SLOT_OPEN) != 0 && (word >> SLOT_GENERATION_SHIFT) == (handle >> SLOT_GENERATION_SHIFT);
}

void FreeSlot(WaitSlotT& slot) noexcept
{
    const std::uint64_t generation = (slot.word.load(std::memory_order_relaxed) >> SLOT_GENERATION_SHIFT) + 1;
    slot.word.store(generation << SLOT_GENERATION_SHIFT);
    slot.nextFree = s_free;
    s_free = &slot;
}

bool TakeSignal(WaitSlotT& slot, WaitHandleT handle) noexcept
{
    std::uint64_t word = slot.word.load();
    for (;;) {
        if (!IsSlotOf(word, handle) || (word & SLOT_SIGNALLED) == 0) return false;
        if ((word & SLOT_MANUAL) != 0) return true;
        if (slot.word.compare_exchange_weak(word, word & ~SLOT_SIGNALLED)) return true;
    }
}

void EnterList(WaiterT& waiter, std::size_t index) noexcept
{
    WaitSlotT& slot = *waiter.slots[index];
    WaitNodeT& node = waiter.nodes[index];
    node = {&waiter, slot.last, nullptr};
    (slot.last != nullptr ? slot.last->next : slot.first) = &node;
    slot.last = &node;
    waiter.count = index + 1;
}

void LeaveLists(WaiterT& waiter) noexcept
{
    for (std::size_t i = 0; i < waiter.count; ++i) {
        WaitSlotT& slot = *waiter.slots[i];
        WaitNodeT& node = waiter.nodes[i];
        (node.previous != nullptr ? node.previous->next : slot.first) = node.next;
        (node.next != nullptr ? node.next->previous : slot.last) = node.previous;
        if (slot.first == nullptr) slot.word.fetch_and(~SLOT_WAITED);
    }
    waiter.count = 0;
}

} // namespace BSS::HAL
