// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Nodes in an order. The list does not own them. Not safe between threads.
#pragma once

#include <cstddef>

namespace BSS::UTI {

class NodeC;

class ListC
{
public:
    ListC() = default;

    /// Leaves the nodes in no list.
    ~ListC();
    ListC(const ListC&) = delete;
    ListC& operator=(const ListC&) = delete;

    /// Puts a node at the end. A node that stands in a list already stays there, and a panic tells.
    void append(NodeC& node);

    /// Takes a node out. Nothing happens if it is not in this list.
    void remove(NodeC& node) noexcept;

    NodeC* getFirst() const noexcept { return m_pFirst; }
    NodeC* getLast() const noexcept { return m_pLast; }
    std::size_t getCount() const noexcept { return m_nNodes; }

private:
    NodeC* m_pFirst = nullptr;
    NodeC* m_pLast = nullptr;
    std::size_t m_nNodes = 0;
};

} // namespace BSS::UTI
