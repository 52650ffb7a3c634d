// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_ErrorBase.h"

#include <cstdint>
#include <typeinfo>

namespace BSS::ERR {

ErrorBaseC::ErrorBaseC(const char* message, ResultCodeT code)
    : m_message(std::make_shared<const std::string>(message == nullptr ? "" : message)), m_code(code)
{}

ErrorBaseC::~ErrorBaseC() = default;

const char* ErrorBaseC::what() const noexcept
try {
    if (!m_text) {
        const std::string code = std::to_string(static_cast<std::int32_t>(m_code));
        m_text = std::make_shared<const std::string>(std::string(typeid(*this).name()) + ": rc=" + code);
    }
    return m_text->c_str();
} catch (const std::exception&) {
    return typeid(*this).name(); // no memory for more
}

const char* ErrorBaseC::GetMessageText() const noexcept
{
    return m_message->c_str();
}

ResultCodeT ErrorBaseC::GetResultCode() const noexcept
{
    return m_code;
}

void ErrorBaseC::SetResultCode(ResultCodeT code) noexcept
{
    m_code = code;
}

} // namespace BSS::ERR
