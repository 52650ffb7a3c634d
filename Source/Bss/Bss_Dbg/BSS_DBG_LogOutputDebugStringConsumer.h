// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A consumer that writes to the debugger output.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"

namespace BSS::DBG {

class DbgLogOutputDebugStringConsumerC final : public DbgLogConsumerC
{
public:
    explicit DbgLogOutputDebugStringConsumerC(std::string name);
    ~DbgLogOutputDebugStringConsumerC() override;

protected:
    bool write(std::string_view lines) override;
};

} // namespace BSS::DBG
