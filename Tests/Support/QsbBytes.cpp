// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Every block head is true after each verb, unless it was told to lie.
#include "Support/QsbBytes.h"

namespace Support {

namespace {

constexpr std::size_t s_nHeaderBytesOffset = 4;
constexpr std::size_t s_nDataBytesOffset = 8;

} // namespace

QsbBytes::QsbBytes(std::uint32_t version)
{
    Block(s_uiFileHeader).Entry(7, 1, version);
}

QsbBytes QsbBytes::Nothing()
{
    QsbBytes nothing;
    nothing.m_bytes.clear();
    return nothing;
}

QsbBytes& QsbBytes::Block(std::uint32_t id)
{
    m_block = m_bytes.size();
    return Raw(Bytes(id, std::uint32_t{0}, std::uint32_t{0}));
}

QsbBytes& QsbBytes::Entry(std::uint32_t type, std::uint32_t tag, std::uint64_t value)
{
    Set32(m_block + s_nHeaderBytesOffset, Get32(m_block + s_nHeaderBytesOffset) + 16);
    return Raw(Bytes(type, tag, value));
}

QsbBytes& QsbBytes::DoubleEntry(std::uint32_t tag, double value)
{
    return Entry(9, tag, std::bit_cast<std::uint64_t>(value));
}

QsbBytes& QsbBytes::Matrix(const std::vector<double>& elements)
{
    for (std::uint32_t i = 0; i < 16; ++i)
        DoubleEntry(8 + i, elements[i]);
    return *this;
}

QsbBytes& QsbBytes::Data(const BytesT& data)
{
    const auto added = static_cast<std::uint32_t>(data.size());
    Set32(m_block + s_nDataBytesOffset, Get32(m_block + s_nDataBytesOffset) + added);
    return Raw(data);
}

QsbBytes& QsbBytes::ClaimHeaderBytes(std::uint32_t bytes)
{
    Set32(m_block + s_nHeaderBytesOffset, bytes);
    return *this;
}

QsbBytes& QsbBytes::ClaimDataBytes(std::uint32_t bytes)
{
    Set32(m_block + s_nDataBytesOffset, bytes);
    return *this;
}

QsbBytes& QsbBytes::Raw(const BytesT& bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

void QsbBytes::Set32(std::size_t offset, std::uint32_t value)
{
    m_bytes = With32(std::move(m_bytes), offset, value);
}

std::uint32_t QsbBytes::Get32(std::size_t offset) const
{
    return static_cast<std::uint32_t>(NumberAt(m_bytes, offset, 4));
}

BytesT SmallPoints(std::uint32_t points, std::uint32_t first)
{
    BytesT data;
    for (std::uint32_t i = first; i < first + points; ++i) {
        const auto x = static_cast<float>(i);
        const BytesT point = Bytes(x, x + 0.25f, x + 0.5f, static_cast<std::uint16_t>(100 + i));
        data.insert(data.end(), point.begin(), point.end());
    }
    return data;
}

QsbBytes SmallScan(std::uint32_t points, std::uint32_t id)
{
    QsbBytes file;
    file.Block(id).Entry(40, 100, 12).Entry(5, 101, 2).Data(SmallPoints(points));
    return file;
}

QsbBytes RichScan(std::uint32_t points)
{
    QsbBytes file;
    file.Block(1);
    for (std::uint32_t tag = 2; tag <= 7; ++tag)
        file.DoubleEntry(tag, tag);
    file.Matrix({1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1}).Entry(7, 24, 3).Entry(7, 25, 5);
    file.DoubleEntry(26, 1.5);
    file.Entry(41, 100, 24).Entry(5, 101, 2).Entry(2, 102, 1).Entry(23, 103, 8).Entry(7, 104, 4);
    for (std::uint32_t i = 0; i < points; ++i) {
        const double x = i;
        const auto byte = [i](std::uint32_t add) { return static_cast<std::uint8_t>(i + add); };
        file.Data(Bytes(x, 2 * x, 3 * x, static_cast<std::uint16_t>(1000 + i), byte(0), i, i + 1, byte(0),
                        byte(1), byte(2), std::uint8_t{77}));
    }
    return file;
}

BytesT Truncated(BytesT bytes, std::size_t size)
{
    bytes.resize(size);
    return bytes;
}

BytesT WithByte(BytesT bytes, std::size_t offset, std::uint8_t value)
{
    bytes.at(offset) = value;
    return bytes;
}

BytesT With32(BytesT bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
    return bytes;
}

std::uint64_t NumberAt(const BytesT& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | bytes.at(offset + i);
    return number;
}

BytesT Slice(const BytesT& bytes, std::size_t offset, std::size_t size)
{
    BytesT slice;
    for (std::size_t i = 0; i < size; ++i)
        slice.push_back(bytes.at(offset + i));
    return slice;
}

} // namespace Support
