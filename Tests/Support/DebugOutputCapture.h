// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Keeps the debugger output for as long as it lives. Texts may come from any thread.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include <mutex>
#include <string>

namespace Support {

class DebugOutputCapture
{
public:
    DebugOutputCapture() { BSS::HAL::SetDebugOutputSink(&Take, this); }
    ~DebugOutputCapture() { BSS::HAL::SetDebugOutputSink(nullptr, nullptr); }
    DebugOutputCapture(const DebugOutputCapture&) = delete;
    DebugOutputCapture& operator=(const DebugOutputCapture&) = delete;

    std::wstring Text() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_text;
    }

private:
    static void Take(const wchar_t* text, void* context)
    {
        auto* const self = static_cast<DebugOutputCapture*>(context);
        const std::lock_guard<std::mutex> guard(self->m_lock);
        self->m_text += text;
    }

    mutable std::mutex m_lock;
    std::wstring m_text;
};

} // namespace Support
