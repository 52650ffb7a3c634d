// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_SystemEvents.h"

#include <utility>

namespace BSS::TSK {

SystemEventTextC::SystemEventTextC(std::wstring text) : m_text(std::move(text)) {}

UTI::SubjectC& GetSystemEventSubject()
{
    static UTI::SubjectC subject;
    return subject;
}

void NotifySystemEvent(std::uint32_t number, const std::wstring& text)
{
    GetSystemEventSubject().notify(number, UTI::MakeShared<SystemEventTextC>(text));
}

} // namespace BSS::TSK
