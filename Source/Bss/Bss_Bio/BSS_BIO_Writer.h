// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Stores named values in a buffer.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_BinaryPersistency.h"
#include "Bss/Bss_Bio/BSS_BIO_SimpleBuffer.h"

namespace BSS::BIO {

class WriterC final : public BinaryPersistencyC
{
public:
    /// Appends to the buffer, which is not owned.
    explicit WriterC(SimpleBufferC& buffer) noexcept : m_buffer(buffer), m_begin(buffer.getSize()) {}

    std::size_t getPosition() const noexcept override { return m_buffer.getSize() - m_begin; }

protected:
    void writeBytes(const std::uint8_t* bytes, std::size_t count) override;

private:
    SimpleBufferC& m_buffer;
    const std::size_t m_begin;
};

} // namespace BSS::BIO
