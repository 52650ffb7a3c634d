// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tsk/BSS_TSK_TaskTrace.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <utility>

namespace BSS::TSK {

void TaskTraceC::add(std::string line)
{
    const GuardC guard(m_lock);
    if (m_lines.size() == MAX_LINES) m_lines.pop_front();
    m_lines.push_back(std::move(line));
}

std::vector<std::string> TaskTraceC::getLines() const
{
    const GuardC guard(m_lock);
    return {m_lines.begin(), m_lines.end()};
}

} // namespace BSS::TSK
