// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Header entries and blocks.
#include "Sio/Sio_QsbBlock.h"

#include "Sio/Sio_LittleEndian.h"

#include <algorithm>

namespace SIO {

namespace {

constexpr std::size_t s_nTypeOffset = 0;
constexpr std::size_t s_nTagOffset = 4;
constexpr std::size_t s_nValueOffset = 8;

} // namespace

QsbHeaderEntryC QsbHeaderEntryC::FromUInt32(std::uint32_t type, std::uint32_t tag,
                                            std::uint32_t value) noexcept
{
    QsbHeaderEntryC entry;
    StoreLittleEndian(entry.m_acBytes.data() + s_nTypeOffset, type);
    StoreLittleEndian(entry.m_acBytes.data() + s_nTagOffset, tag);
    entry.SetUInt32(value);
    return entry;
}

QsbHeaderEntryC QsbHeaderEntryC::FromDouble(std::uint32_t tag, double value) noexcept
{
    QsbHeaderEntryC entry = FromUInt32(QsbFormat::s_uiType64Bit, tag, 0);
    entry.SetDouble(value);
    return entry;
}

std::uint32_t QsbHeaderEntryC::GetType() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nTypeOffset);
}

std::uint32_t QsbHeaderEntryC::GetTag() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nTagOffset);
}

std::uint8_t QsbHeaderEntryC::AsByte() const noexcept
{
    return LoadLittleEndian<std::uint8_t>(m_acBytes.data() + s_nValueOffset);
}

std::uint32_t QsbHeaderEntryC::AsUInt32() const noexcept
{
    return LoadLittleEndian<std::uint32_t>(m_acBytes.data() + s_nValueOffset);
}

std::uint64_t QsbHeaderEntryC::AsUInt64() const noexcept
{
    return LoadLittleEndian<std::uint64_t>(m_acBytes.data() + s_nValueOffset);
}

double QsbHeaderEntryC::AsDouble() const noexcept
{
    return LoadLittleEndian<double>(m_acBytes.data() + s_nValueOffset);
}

void QsbHeaderEntryC::SetByte(std::uint8_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetUInt32(std::uint32_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetUInt64(std::uint64_t value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

void QsbHeaderEntryC::SetDouble(double value) noexcept
{
    StoreLittleEndian(m_acBytes.data() + s_nValueOffset, value);
}

std::uint32_t QsbBlockC::GetHeaderBytes() const noexcept
{
    return static_cast<std::uint32_t>(GetEntryCount() * QsbFormat::s_nEntryBytes);
}

std::uint64_t QsbBlockC::GetEndOffset() const noexcept
{
    // Several are all empty.
    return GetDataOffset() + m_uiDataBytes + (GetRunLength() - 1) * QsbFormat::s_nBlockHeadBytes;
}

const QsbHeaderEntryC* QsbBlockC::FindEntry(std::uint32_t tag) const noexcept
{
    const auto* it =
        std::find_if(begin(), end(), [&](const QsbHeaderEntryC& e) { return e.GetTag() == tag; });
    return it == end() ? nullptr : it;
}

QsbHeaderEntryC* QsbBlockC::ChangeEntry(std::uint32_t tag) noexcept
{
    const QsbHeaderEntryC* entry = FindEntry(tag);
    if (entry == nullptr) return nullptr;
    SetHeaderDirty(true);
    return &m_vecEntries[static_cast<std::size_t>(entry - begin())];
}

bool QsbBlockC::AddEntry(const QsbHeaderEntryC& entry)
{
    if (IsSealed()) return false;
    m_vecEntries.push_back(entry);
    SetHeaderDirty(true);
    return true;
}

} // namespace SIO
