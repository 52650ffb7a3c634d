// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The block of text that strings share. Short texts lie in the block itself, longer ones in a heap buffer
// beside it. Only the reference count may be touched by several threads at once; the text of a shared block
// never changes. For StringC only.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace BSS::UTI {

class TextBlockC
{
public:
    /// Longest text that needs no heap buffer.
    static constexpr std::size_t INLINE_CHARS = 15;

    /// The capacity, terminator included, for a text that grows: half as much again as is needed, but not
    /// more than the longest text takes.
    static constexpr std::size_t GrownCapacity(std::size_t needed) noexcept
    {
        constexpr std::size_t MOST = std::size_t{1} << 31;
        if (needed <= INLINE_CHARS + 1) return needed;
        const std::size_t grown = needed + needed / 2;
        return grown < MOST ? grown : needed < MOST ? MOST : needed;
    }

    /// A new block with one reference and a text; null is the empty text. Throws std::bad_alloc, and
    /// boost::numeric::positive_overflow for a text of 2^31 characters or more.
    static TextBlockC* Make(const wchar_t* text);
    static TextBlockC* Make(const wchar_t* text, std::size_t length);

    /// The one empty block, with one reference more. It holds a reference of its own, so it is never freed
    /// and never looks unshared.
    static TextBlockC* AcquireEmpty() noexcept;

    void Acquire() noexcept { m_nReferences.fetch_add(1, std::memory_order_relaxed); }

    /// Gives a reference back; the last one frees the heap buffer and the block.
    void Release() noexcept
    {
        // Release pairs with acquire: whoever frees the block has seen what the others did with it.
        if (m_nReferences.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

    /// True when the caller's reference is the only one, so that the text may be changed in place.
    bool IsUnshared() const noexcept { return m_nReferences.load(std::memory_order_acquire) == 1; }

    const wchar_t* Text() const noexcept { return m_pHeap != nullptr ? m_pHeap : m_inline; }
    wchar_t* Text() noexcept { return m_pHeap != nullptr ? m_pHeap : m_inline; }

    /// How many characters fit, the terminator included.
    std::size_t Capacity() const noexcept { return m_pHeap != nullptr ? m_capacity : INLINE_CHARS + 1; }

    /// Null while the text is inline.
    const wchar_t* Heap() const noexcept { return m_pHeap; }

    std::uint32_t References() const noexcept { return m_nReferences.load(std::memory_order_relaxed); }

    /// Exchanges an unshared block's buffer for a larger one, keeping the text.
    void Grow(std::size_t capacity, std::size_t length);

    ~TextBlockC();
    TextBlockC(const TextBlockC&) = delete;
    TextBlockC& operator=(const TextBlockC&) = delete;

private:
    TextBlockC() noexcept = default;
    TextBlockC(const wchar_t* text, std::size_t length);

    wchar_t m_inline[INLINE_CHARS + 1] = {};
    wchar_t* m_pHeap = nullptr;
    std::uint32_t m_capacity = 0;
    [[maybe_unused]] std::int32_t m_marker = -1; // nothing reads it
    std::atomic<std::uint32_t> m_nReferences{1};
};

} // namespace BSS::UTI
