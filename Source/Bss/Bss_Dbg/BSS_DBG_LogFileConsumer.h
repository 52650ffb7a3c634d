// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A consumer that writes a log file. Nothing is buffered, so every message is in the file when Log returns.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace BSS::DBG {

class DbgLogFileConsumerC final : public DbgLogConsumerC
{
public:
    /// How large a log file may grow when nothing else is configured.
    static constexpr std::uint64_t DEFAULT_LIMIT_BYTES = 1u << 20;

    DbgLogFileConsumerC(std::string name, std::wstring fileName,
                        std::uint64_t limitBytes = DEFAULT_LIMIT_BYTES);
    bool flush() override;
    ~DbgLogFileConsumerC() override;

protected:
    bool write(std::string_view lines) override;

private:
    DbgLogFileC m_file;
};

} // namespace BSS::DBG
