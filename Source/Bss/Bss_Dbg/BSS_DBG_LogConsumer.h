// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The base of all log consumers: takes a level, a format and its arguments, and makes whole lines of them for
// the derived class to write. Logging never throws to the caller, never stops the process and accepts calls
// from any thread; the lines of one message stay together. A thread that logs while it is inside a consumer
// already, because something beneath the consumer reports, is sent to the debugger output instead: no message
// ever waits for itself.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>

namespace BSS::DBG {

class DbgLogConsumerC
{
public:
    /// Longer messages are cut so that they fit the line buffer.
    static constexpr std::size_t s_iLOG_LINE_BUFFER_SIZE = 16384;

    DbgLogConsumerC(std::string name, PrefixKind prefix);
    virtual ~DbgLogConsumerC();
    DbgLogConsumerC(const DbgLogConsumerC&) = delete;
    DbgLogConsumerC& operator=(const DbgLogConsumerC&) = delete;

    /// Logs one message whatever its level. Log() is the front that looks at the level first.
    virtual void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments);

    /// Puts what has been logged so far on the device. False when that fails.
    [[nodiscard]] virtual bool flush();

    /// Logs one message if its level is enabled. The format is that of BSS_UTI_Format.h.
    template<typename... Arguments>
    void Log(int level, const char* format, const Arguments&... arguments)
    {
        if (!isEnabled(level)) return;
        const std::array<UTI::FormatArgumentC, sizeof...(Arguments)> row{UTI::FormatArgumentC(arguments)...};
        UTI::FormatArgumentsC source(row.data(), row.size());
        logFormatted(level, format, source);
    }

    /// Whether messages of this level are logged. Everything is, until setLevel is called.
    bool isEnabled(int level) const noexcept { return level >= m_level.load(std::memory_order_relaxed); }

    /// The lowest level that is logged from now on.
    void setLevel(int level) noexcept;

    const std::string& getName() const noexcept;

    /// Whether the calling thread is inside a consumer's write at this moment.
    static bool isWriting() noexcept;

protected:
    /// Writes whole lines, each ended by "\n". One call at a time. May throw what derives from
    /// std::exception; that and false are told on the debugger output.
    virtual bool write(std::string_view lines) = 0;

private:
    bool writeMessage(int level, const char* format, UTI::FormatSourceI& arguments);
    std::string linesOf(int level, std::string_view message) const;
    void reportFailure() const noexcept;

    const std::string m_name;
    const PrefixKind m_prefix;
    std::atomic<int> m_level;
    TSK::MutexC m_lock;
    char m_pszPrintBuffer[s_iLOG_LINE_BUFFER_SIZE] = {}; // guarded by the lock
};

} // namespace BSS::DBG
