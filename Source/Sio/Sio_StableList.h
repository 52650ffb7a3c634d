// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A sequence that grows and shrinks at its end and whose items never move. The first few share a small piece
// of memory; when there are more they go into pieces of the size of a large page, because with a million
// items most of the time would go into mapping memory page by page. Without locks.
#pragma once

#include "Sio/Sio_LargeMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace SIO {

template<typename T>
class StableListT
{
    static constexpr std::size_t s_nFirstItems = 16384 / sizeof(T);
    static constexpr std::size_t s_nPieceItems = s_nLargeMemoryBytes / sizeof(T);
    static_assert(s_nFirstItems > 0 && alignof(T) <= 64, "an item lies in one piece");

    /// By index, so that it stays valid as long as its item does.
    template<typename ListT, typename ItemT>
    class IteratorT
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = ItemT*;
        using reference = ItemT&;

        IteratorT() = default;
        IteratorT(ListT* pList, std::size_t nIndex) : m_pList(pList), m_nIndex(nIndex) {}

        reference operator*() const { return (*m_pList)[m_nIndex]; }
        pointer operator->() const { return &**this; }
        IteratorT& operator++() { return *this += 1; }
        IteratorT operator++(int) { return std::exchange(*this, *this + 1); }
        IteratorT& operator--() { return *this += -1; }
        IteratorT operator--(int) { return std::exchange(*this, *this + -1); }
        IteratorT& operator+=(difference_type n)
        {
            m_nIndex += static_cast<std::size_t>(n);
            return *this;
        }
        IteratorT operator+(difference_type n) const { return IteratorT(*this) += n; }
        difference_type operator-(const IteratorT& other) const
        {
            return static_cast<difference_type>(m_nIndex - other.m_nIndex);
        }
        bool operator==(const IteratorT& other) const { return m_nIndex == other.m_nIndex; }

    private:
        ListT* m_pList = nullptr;
        std::size_t m_nIndex = 0;
    };

public:
    using iterator = IteratorT<StableListT, T>;
    using const_iterator = IteratorT<const StableListT, const T>;

    StableListT() = default;
    /// Leaves the other one empty. Its items stay where they are.
    StableListT(StableListT&& other) noexcept { swap(other); }
    StableListT& operator=(StableListT&& other) noexcept
    {
        StableListT(std::move(other)).swap(*this);
        return *this;
    }
    ~StableListT() { clear(); }

    std::size_t size() const noexcept { return m_nItems; }
    bool empty() const noexcept { return m_nItems == 0; }

    T& operator[](std::size_t i) noexcept { return *Place(i); }
    const T& operator[](std::size_t i) const noexcept { return *Place(i); }
    T& back() noexcept { return *m_pLast; }
    const T& back() const noexcept { return *m_pLast; }

    iterator begin() noexcept { return {this, 0}; }
    iterator end() noexcept { return {this, m_nItems}; }
    const_iterator begin() const noexcept { return {this, 0}; }
    const_iterator end() const noexcept { return {this, m_nItems}; }

    void swap(StableListT& other) noexcept
    {
        std::swap(m_pFirst, other.m_pFirst);
        std::swap(m_vecPieces, other.m_vecPieces);
        std::swap(m_nItems, other.m_nItems);
        std::swap(m_pLast, other.m_pLast);
        std::swap(m_pNext, other.m_pNext);
        std::swap(m_pEnd, other.m_pEnd);
    }

    /// Throws std::bad_alloc, and then nothing has changed.
    template<typename... ArgumentsT>
    T& emplace_back(ArgumentsT&&... arguments)
    {
        if (m_pNext == m_pEnd) Grow();
        T* const pItem = ::new (static_cast<void*>(m_pNext)) T{std::forward<ArgumentsT>(arguments)...};
        ++m_pNext;
        ++m_nItems;
        m_pLast = pItem;
        return *pItem;
    }

    /// Appends `nItems` items that are copied as bytes. Throws std::bad_alloc, and then some of them may have
    /// been appended.
    void append(const T* pItems, std::size_t nItems)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        while (nItems != 0) {
            if (m_pNext == m_pEnd) Grow();
            const std::size_t nPart = std::min(nItems, static_cast<std::size_t>(m_pEnd - m_pNext));
            std::memcpy(m_pNext, pItems, nPart * sizeof(T));
            m_pNext += nPart;
            m_pLast = m_pNext - 1;
            m_nItems += nPart;
            pItems += nPart;
            nItems -= nPart;
        }
    }

    void pop_back() noexcept
    {
        std::destroy_at(m_pLast);
        --m_nItems;
        FindNext();
        m_pLast = empty() ? nullptr : Place(m_nItems - 1);
    }

    /// Gives the memory back as well.
    void clear() noexcept
    {
        for (T& item : *this)
            std::destroy_at(&item);
        m_nItems = 0;
        m_vecPieces.clear();
        m_pFirst.reset();
        m_pLast = m_pNext = m_pEnd = nullptr;
    }

private:
    struct FirstItemsT
    {
        alignas(T) std::byte abytes[s_nFirstItems * sizeof(T)];
    };

    /// All memory is in use: takes more.
    void Grow()
    {
        if (m_pFirst == nullptr) {
            m_pFirst.reset(new FirstItemsT); // whose bytes stay as they are
        } else if (m_nItems == s_nFirstItems + m_vecPieces.size() * s_nPieceItems) {
            m_vecPieces.push_back(MakeLargeMemory());
        }
        FindNext();
    }

    /// Where the next item goes, and where the memory ends that it lies in.
    void FindNext() noexcept
    {
        m_pNext = Place(m_nItems);
        const bool bFirst = m_nItems < s_nFirstItems;
        const std::size_t nBefore = bFirst ? m_nItems : (m_nItems - s_nFirstItems) % s_nPieceItems;
        m_pEnd = m_pNext + ((bFirst ? s_nFirstItems : s_nPieceItems) - nBefore);
    }

    T* Place(std::size_t i) const noexcept
    {
        if (i < s_nFirstItems) return reinterpret_cast<T*>(m_pFirst->abytes) + i;
        i -= s_nFirstItems;
        return static_cast<T*>(m_vecPieces[i / s_nPieceItems].get()) + i % s_nPieceItems;
    }

    std::unique_ptr<FirstItemsT> m_pFirst;
    std::vector<LargeMemoryT> m_vecPieces;
    std::size_t m_nItems = 0;
    T* m_pLast = nullptr;
    T* m_pNext = nullptr;
    T* m_pEnd = nullptr;
};

} // namespace SIO
