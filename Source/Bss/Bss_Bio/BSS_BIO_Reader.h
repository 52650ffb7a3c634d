// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Loads named values from bytes of the caller's.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_BinaryPersistency.h"

namespace BSS::BIO {

class ReaderC : public BinaryPersistencyC
{
public:
    /// The bytes are not copied. Where there are none although there should be, reading throws
    /// OverflowExceptionC with RC_OBJECT_MISSING.
    ReaderC(const void* bytes, std::size_t count) noexcept
        : m_bytes(static_cast<const std::uint8_t*>(bytes)), m_count(bytes != nullptr ? count : 0),
          m_bMissing(bytes == nullptr && count > 0)
    {}

    std::size_t getPosition() const noexcept override { return m_position; }
    std::size_t getRest() const noexcept { return m_count - m_position; }

protected:
    void readBytes(std::uint8_t* bytes, std::size_t count) override;

private:
    const std::uint8_t* const m_bytes;
    const std::size_t m_count;
    const bool m_bMissing;
    std::size_t m_position = 0;
};

} // namespace BSS::BIO
