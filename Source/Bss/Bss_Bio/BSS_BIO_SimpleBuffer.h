// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Bytes with a limit, for what is stored: the writer appends until the limit is reached. One thread at a
// time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace BSS::BIO {

class SimpleBufferC
{
public:
    explicit SimpleBufferC(std::size_t capacity) : m_capacity(capacity) {}

    /// False, and nothing appended, when they do not fit.
    bool append(const void* bytes, std::size_t count)
    {
        if (count > m_capacity - m_bytes.size()) return false;
        const auto* const first = static_cast<const std::uint8_t*>(bytes);
        m_bytes.insert(m_bytes.end(), first, first + count);
        return true;
    }
    void clear() noexcept { m_bytes.clear(); }
    const std::uint8_t* getData() const noexcept { return m_bytes.data(); }
    std::size_t getSize() const noexcept { return m_bytes.size(); }
    std::size_t getCapacity() const noexcept { return m_capacity; }

private:
    const std::size_t m_capacity;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace BSS::BIO
