// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Events of the running system that an operator should hear of: a number and a text. Anyone can observe them;
// the notification runs on the thread where it happened.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include <cstdint>
#include <string>

namespace BSS::TSK {

inline constexpr std::uint32_t SYSTEM_EVENT_QUEUE_FULL = 8412;       ///< a command task's queue is full
inline constexpr std::uint32_t SYSTEM_EVENT_QUEUE_FULL_NAMED = 8473; ///< likewise, with the task's own text

/// What goes with a system event.
class SystemEventTextC final : public UTI::SharedObjectC
{
public:
    explicit SystemEventTextC(std::wstring text);
    const std::wstring& getText() const noexcept { return m_text; }

private:
    const std::wstring m_text;
};

/// Notified with the event's number and a SystemEventTextC. Safe from any thread.
UTI::SubjectC& GetSystemEventSubject();

void NotifySystemEvent(std::uint32_t number, const std::wstring& text);

} // namespace BSS::TSK
