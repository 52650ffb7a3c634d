// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Loads named values and shows them, one "name = value" line each, for people. A text is shown in quotes
// after the line of its length.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_Reader.h"

#include <string>

namespace BSS::BIO {

class DecoderC final : public ReaderC
{
public:
    using ReaderC::ReaderC;

    /// UTF-8.
    const std::string& getLines() const noexcept { return m_lines; }

protected:
    void onNumber(const char* name, std::uint64_t value, std::size_t size) override;
    void onText(const char* lengthName, const std::wstring& text) override;

private:
    std::string m_lines;
};

} // namespace BSS::BIO
