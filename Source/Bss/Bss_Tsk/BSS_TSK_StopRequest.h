// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The message that ends a command task's loop. For the sources of BSS_TSK_Command* only.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_MsgObject.h"

namespace BSS::TSK {

class StopRequestC final : public MsgObjectI
{
public:
    StopRequestC() noexcept : MsgObjectI(MsgKind::StopRequest, "StopRequest") {}
    void execute() override {}
};

} // namespace BSS::TSK
