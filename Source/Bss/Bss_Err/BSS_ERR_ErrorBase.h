// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The base of the framework's exceptions: a result code for callers that have no return value to carry it.
// Copying never throws; the message and the text are shared between copies. One object belongs to one thread
// at a time, as the text is made when it is first asked for.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <exception>
#include <memory>
#include <string>

namespace BSS::ERR {

class ErrorBaseC : public std::exception
{
public:
    /// Throws std::bad_alloc only. A null message is an empty one.
    ErrorBaseC(const char* message, ResultCodeT code);

    ErrorBaseC(const ErrorBaseC&) noexcept = default;
    ErrorBaseC& operator=(const ErrorBaseC&) noexcept = default;
    ~ErrorBaseC() override;

    /// The name of the object's own class as the compiler's type information spells it, ": rc=", and the code
    /// as a signed decimal number. The text is made once: later calls, and copies, give the same one even
    /// when the code has been changed since. Lives as long as the object.
    const char* what() const noexcept override;

    /// The message given at construction. It does not enter the text of what().
    const char* GetMessageText() const noexcept;

    ResultCodeT GetResultCode() const noexcept;
    void SetResultCode(ResultCodeT code) noexcept;

private:
    std::shared_ptr<const std::string> m_message;
    ResultCodeT m_code;
    mutable std::shared_ptr<const std::string> m_text; // none until first asked for
};

} // namespace BSS::ERR
