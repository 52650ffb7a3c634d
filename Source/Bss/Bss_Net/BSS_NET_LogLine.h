// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log line with a fixed text: the level and the format stand in one table for each component, and what is
// logged is a line of it with its values.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"

#include <memory>
#include <utility>

namespace BSS::NET {

struct LogLineT
{
    int level;
    const char* format;
};

/// A consumer that may not be there.
class LogC
{
public:
    explicit LogC(std::shared_ptr<DBG::DbgLogConsumerC> consumer) : m_consumer(std::move(consumer)) {}

    template<typename... Values>
    void operator()(const LogLineT& line, const Values&... values) const
    {
        if (m_consumer) m_consumer->Log(line.level, line.format, values...);
    }

private:
    const std::shared_ptr<DBG::DbgLogConsumerC> m_consumer;
};

} // namespace BSS::NET
