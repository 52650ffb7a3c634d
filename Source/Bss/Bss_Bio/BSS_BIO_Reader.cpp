// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Bio/BSS_BIO_Reader.h"

#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"

#include <algorithm>

namespace BSS::BIO {

void ReaderC::readBytes(std::uint8_t* bytes, std::size_t count)
{
    if (m_bMissing) throw OverflowExceptionC("there are no bytes to read from", RC_OBJECT_MISSING);
    if (count > getRest()) throw OverflowExceptionC("value reaches beyond the end of the bytes");
    std::copy(m_bytes + m_position, m_bytes + m_position + count, bytes);
    m_position += count;
}

} // namespace BSS::BIO
