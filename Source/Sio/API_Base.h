// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The handle/implementation pair. A handle (BaseC) and its implementation (ImplObjectC) point at each other,
// and each one's destruction destroys the other, so the two are always released together. A handle whose
// implementation may be destroyed or taken from outside lives on the heap, since it is then deleted. Not
// copyable. Without locks: a pair belongs to one thread at a time. Knows nothing of scans.
#pragma once

namespace API {

class ImplObjectC;

/// The handle half.
class BaseC
{
public:
    /// An empty handle.
    BaseC() noexcept = default;

    /// As SetImpl on an empty handle.
    explicit BaseC(ImplObjectC* poImpl);

    BaseC(const BaseC&) = delete;
    BaseC& operator=(const BaseC&) = delete;

    /// Deletes the implementation.
    virtual ~BaseC();

    /// Takes over `poImpl` (null empties the handle). An implementation held before is forgotten, not
    /// deleted; a different handle that owned `poImpl` is emptied and deleted. Giving the one already held
    /// does nothing.
    virtual void SetImpl(ImplObjectC* poImpl);

    /// The implementation; null when there is none. Owned by the handle.
    ImplObjectC* GetImpl() const noexcept { return m_poImpl; }

private:
    friend class ImplObjectC;

    void Adopt(ImplObjectC* poImpl);

    ImplObjectC* m_poImpl = nullptr;
};

/// The implementation half.
class ImplObjectC
{
public:
    ImplObjectC() noexcept = default;
    ImplObjectC(const ImplObjectC&) = delete;
    ImplObjectC& operator=(const ImplObjectC&) = delete;

    /// Deletes the owner.
    virtual ~ImplObjectC();

    /// The handle that owns this object; null when there is none.
    virtual BaseC* GetOwner() const { return m_poOwner; }

private:
    friend class BaseC;

    BaseC* m_poOwner = nullptr;
};

} // namespace API
