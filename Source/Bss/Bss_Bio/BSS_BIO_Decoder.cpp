// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Bio/BSS_BIO_Decoder.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

namespace BSS::BIO {

void DecoderC::onNumber(const char* name, std::uint64_t value, std::size_t)
{
    m_lines.append(name).append(" = ").append(std::to_string(value)).push_back('\n');
}

void DecoderC::onText(const char*, const std::wstring& text)
{
    m_lines.append(1, '"').append(HAL::Utf8FromWide(text)).append("\"\n");
}

} // namespace BSS::BIO
