// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The bytes of a QSB file put together by hand, and ways to spoil them. Shares no code with the library: what
// the library reads is checked against files it did not write, what it writes against bytes it did not make.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace Support {

using BytesT = std::vector<std::uint8_t>;

inline constexpr std::uint32_t s_uiFileHeader = 0x12879054;

/// Appends the little-endian bytes of `value`.
template<typename T>
void Put(BytesT& bytes, T value)
{
    std::uint64_t bits = 0;
    if constexpr (std::is_same_v<T, double>) {
        bits = std::bit_cast<std::uint64_t>(value);
    } else if constexpr (std::is_same_v<T, float>) {
        bits = std::bit_cast<std::uint32_t>(value);
    } else {
        bits = static_cast<std::uint64_t>(value);
    }
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
}

/// The bytes of all `values`, one after another, each as wide as its type.
template<typename... T>
BytesT Bytes(T... values)
{
    BytesT bytes;
    (Put(bytes, values), ...);
    return bytes;
}

class QsbBytes
{
public:
    /// Begins with a file header block of this version.
    explicit QsbBytes(std::uint32_t version = 0x00020000);

    /// No block at all.
    static QsbBytes Nothing();

    /// Begins a block. The verbs below go on with it.
    QsbBytes& Block(std::uint32_t id);

    /// Adds a header entry; comes before the block's data.
    QsbBytes& Entry(std::uint32_t type, std::uint32_t tag, std::uint64_t value = 0);
    QsbBytes& DoubleEntry(std::uint32_t tag, double value);

    /// Adds the 16 entries of a matrix.
    QsbBytes& Matrix(const std::vector<double>& elements);

    /// Adds to the block's data area.
    QsbBytes& Data(const BytesT& data);

    /// Makes the block's head lie about its sizes.
    QsbBytes& ClaimHeaderBytes(std::uint32_t bytes);
    QsbBytes& ClaimDataBytes(std::uint32_t bytes);

    /// Adds bytes that no block head counts.
    QsbBytes& Raw(const BytesT& bytes);

    /// Where the block begun last stands in the file.
    std::size_t BlockOffset() const { return m_block; }

    const BytesT& Get() const { return m_bytes; }

private:
    void Set32(std::size_t offset, std::uint32_t value);
    std::uint32_t Get32(std::size_t offset) const;

    BytesT m_bytes;
    std::size_t m_block = 0;
};

/// A file whose block `id` holds `points` points: float positions (i, i + 0.25, i + 0.5), 16-bit intensities
/// 100 + i.
QsbBytes SmallScan(std::uint32_t points, std::uint32_t id = 1);

/// The stored points of SmallScan, 14 bytes each, from point `first` on.
BytesT SmallPoints(std::uint32_t points, std::uint32_t first = 0);

/// Every kind of entry and element: box, matrix (translation 10, 20, 30), grid 3 x 5, height 1.5; double
/// positions (i, 2 i, 3 i), intensity 1000 + i, level of noise i, grid (i, i + 1), colour (i, i + 1, i + 2).
QsbBytes RichScan(std::uint32_t points);

BytesT Truncated(BytesT bytes, std::size_t size);
BytesT WithByte(BytesT bytes, std::size_t offset, std::uint8_t value);
BytesT With32(BytesT bytes, std::size_t offset, std::uint32_t value);

/// The number at `offset`, least significant byte first.
std::uint64_t NumberAt(const BytesT& bytes, std::size_t offset, std::size_t size);
BytesT Slice(const BytesT& bytes, std::size_t offset, std::size_t size);

} // namespace Support
