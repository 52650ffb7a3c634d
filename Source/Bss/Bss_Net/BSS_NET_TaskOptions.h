// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The threads of this floor: their entry in the table of task options, which a program may change, and the
// settings made of it.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Task.h"

#include <cstdint>
#include <memory>
#include <string>

namespace BSS::NET {

inline constexpr std::int32_t NET_TASK_OPTION = 0x4E4554;

/// The first call puts the entry into the table: normal priority, the usual stack.
TSK::TaskSettingsT NetTaskSettings(const std::string& name, std::shared_ptr<DBG::DbgLogConsumerC> logger);

} // namespace BSS::NET
