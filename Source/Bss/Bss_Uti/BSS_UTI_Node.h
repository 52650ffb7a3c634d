// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What can stand in a ListC, in one at a time. The links are the node's own, so being in a list costs no
// memory and no search. Not safe between threads; the list's user sees to that.
#pragma once

namespace BSS::UTI {

class ListC;

class NodeC
{
public:
    /// A node that goes while it is in a list is taken out of it.
    virtual ~NodeC();

    /// The neighbours in the list; null at the ends and outside of any list.
    virtual NodeC* getNext() const noexcept;
    virtual NodeC* getPrevious() const noexcept;

    bool isInList() const noexcept { return m_pList != nullptr; }

protected:
    NodeC() = default;
    NodeC(const NodeC&) = delete;
    NodeC& operator=(const NodeC&) = delete;

private:
    friend class ListC;

    NodeC* m_pNext = nullptr;
    NodeC* m_pPrevious = nullptr;
    ListC* m_pList = nullptr;
};

} // namespace BSS::UTI
