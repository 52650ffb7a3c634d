// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"

#include <exception>
#include <utility>

namespace BSS::DBG {

DbgLogFileConsumerC::DbgLogFileConsumerC(std::string name, std::wstring fileName, std::uint64_t limitBytes)
    : DbgLogConsumerC(std::move(name), PrefixKind::Full), m_file(std::move(fileName), limitBytes)
{
    DbgLogConsumerC::setLimit(limitBytes);
}

DbgLogFileConsumerC::~DbgLogFileConsumerC()
{
    bool finished = false;
    try {
        finished = m_file.finish();
    } catch (const std::exception&) {
        finished = false;
    }
    if (!finished) reportFailure();
}

std::wstring DbgLogFileConsumerC::path() const
{
    return m_file.path();
}

bool DbgLogFileConsumerC::write(std::string_view lines)
{
    m_file.setLimit(getLimit());
    m_file.setOlderFiles(getOlderFiles());
    m_file.setFilling(!writesBareLines()); // a program reads them, perhaps to the last byte
    const bool appended = m_file.append(lines, writeTime());
    return (!writeMustHandOver() || m_file.handOver()) && appended;
}

bool DbgLogFileConsumerC::flushDevice()
{
    return m_file.flush();
}

} // namespace BSS::DBG
