// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"

#include <utility>

namespace BSS::DBG {

DbgLogFileConsumerC::DbgLogFileConsumerC(std::string name, std::wstring fileName, std::uint64_t limitBytes)
    : DbgLogConsumerC(std::move(name), PrefixKind::Full), m_file(std::move(fileName), limitBytes)
{}

DbgLogFileConsumerC::~DbgLogFileConsumerC() = default;

bool DbgLogFileConsumerC::flush()
{
    return m_file.flush();
}

bool DbgLogFileConsumerC::write(std::string_view lines)
{
    return m_file.append(lines);
}

} // namespace BSS::DBG
