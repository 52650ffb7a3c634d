// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Objects that are shared by counting, and the pointer that counts. The count is in the object: sharing costs
// no further memory. Pointers to one object may be copied and dropped on different threads; one pointer
// belongs to one thread at a time.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace BSS::UTI {

class SharedObjectC
{
public:
    SharedObjectC() noexcept = default;
    virtual ~SharedObjectC() = default;
    SharedObjectC(const SharedObjectC&) = delete;
    SharedObjectC& operator=(const SharedObjectC&) = delete;

    void acquire() const noexcept { m_nUsers.fetch_add(1, std::memory_order_relaxed); }

    /// The last one to release destroys the object.
    void release() const noexcept
    {
        // A sole user needs no read-modify-write: nobody else is there to count. Acquire pairs with the
        // release below, so that what the other users did is done before the end.
        if (m_nUsers.load(std::memory_order_acquire) == 1 ||
            m_nUsers.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete this;
        }
    }

private:
    mutable std::atomic<std::uint32_t> m_nUsers{0};
};

template<typename T>
class RefPtrT
{
public:
    RefPtrT() noexcept = default;
    RefPtrT(std::nullptr_t) noexcept {}
    RefPtrT(T* pObject) noexcept : m_pObject(pObject)
    {
        if (m_pObject != nullptr) m_pObject->acquire();
    }
    RefPtrT(const RefPtrT& other) noexcept : RefPtrT(other.m_pObject) {}
    RefPtrT(RefPtrT&& other) noexcept : m_pObject(std::exchange(other.m_pObject, nullptr)) {}
    template<typename U>
    RefPtrT(const RefPtrT<U>& other) noexcept : RefPtrT(other.get())
    {}
    template<typename U>
    RefPtrT(RefPtrT<U>&& other) noexcept : m_pObject(other.detach())
    {}
    ~RefPtrT()
    {
        if (m_pObject != nullptr) m_pObject->release();
    }
    RefPtrT& operator=(RefPtrT other) noexcept
    {
        std::swap(m_pObject, other.m_pObject);
        return *this;
    }

    T* get() const noexcept { return m_pObject; }
    T* operator->() const noexcept { return m_pObject; }
    T& operator*() const noexcept { return *m_pObject; }
    explicit operator bool() const noexcept { return m_pObject != nullptr; }

    /// Takes over what detach() has given away.
    static RefPtrT Adopt(T* pObject) noexcept
    {
        RefPtrT pointer;
        pointer.m_pObject = pObject;
        return pointer;
    }

    /// Gives the pointer away without releasing it.
    T* detach() noexcept { return std::exchange(m_pObject, nullptr); }

private:
    T* m_pObject = nullptr;
};

/// A new object and the first pointer to it.
template<typename T, typename... Arguments>
RefPtrT<T> MakeShared(Arguments&&... arguments)
{
    return RefPtrT<T>(new T(std::forward<Arguments>(arguments)...));
}

} // namespace BSS::UTI
