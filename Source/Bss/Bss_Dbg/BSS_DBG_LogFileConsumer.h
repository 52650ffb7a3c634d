// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A consumer that writes a log file. A message of level ERROR or FATAL is in the file when Log returns; so is
// any other that comes after a tenth of a second of silence. See DbgLogFileC for the rest.
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
    DbgLogFileConsumerC(std::string name, std::wstring fileName,
                        std::uint64_t limitBytes = DEFAULT_LIMIT_BYTES);
    ~DbgLogFileConsumerC() override;

    /// Where the file is; empty when there is no log directory.
    std::wstring path() const;

protected:
    bool write(std::string_view lines) override;
    bool flushDevice() override;

private:
    DbgLogFileC m_file;
};

} // namespace BSS::DBG
