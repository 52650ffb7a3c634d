// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A consumer that writes to the process's standard output. Only who asks for "printf" by name has one, so
// nothing appears there by itself.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"

namespace BSS::DBG {

class DbgLogPrintfConsumerC final : public DbgLogConsumerC
{
public:
    explicit DbgLogPrintfConsumerC(std::string name);
    ~DbgLogPrintfConsumerC() override;

protected:
    bool write(std::string_view lines) override;
};

} // namespace BSS::DBG
