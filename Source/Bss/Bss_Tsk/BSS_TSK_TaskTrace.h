// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The lines that tell which tasks were started and stopped: the last 1000 of them. Safe from any thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace BSS::TSK {

class TaskTraceC
{
public:
    static constexpr std::size_t MAX_LINES = 1000;

    void add(std::string line);

    /// Oldest first.
    std::vector<std::string> getLines() const;

private:
    mutable MutexC m_lock;
    std::deque<std::string> m_lines;
};

} // namespace BSS::TSK
