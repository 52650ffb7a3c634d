// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Bio/BSS_BIO_Writer.h"

#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"

namespace BSS::BIO {

void WriterC::writeBytes(const std::uint8_t* bytes, std::size_t count)
{
    if (!m_buffer.append(bytes, count)) throw OverflowExceptionC("value does not fit into the buffer");
}

} // namespace BSS::BIO
