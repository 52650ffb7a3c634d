// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The base of all log consumers: takes a level, a format and its arguments, and makes whole lines of them for
// the derived class to write. Logging never throws to the caller, never stops the process and accepts calls
// from any thread; the lines of one message stay together. The text is made outside of any lock; the lock
// covers the write; errno is as it was. A thread that logs while it is inside a consumer already, because
// something beneath the consumer reports, is sent to the debugger output instead, as one line: no message
// ever waits for itself. A request that the thread end, be it cancellation, interruption or, on Linux, a
// task's forced end, waits until the call is over.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace BSS::DBG {

struct LogSettingsT;

class DbgLogConsumerC
{
public:
    /// No line is longer than this or than a file may grow, its prefix and end included; a longer one is
    /// continued in the next. Where a file may grow so little that the prefix and a few characters have no
    /// room, the file cuts the line and marks it.
    static constexpr std::size_t s_iLOG_LINE_BUFFER_SIZE = 16384;

    /// A message that is made of a format is cut at this, with its prefix, and its last line says so; one of
    /// a wide format at as many wide characters. A text that logText is given is not cut.
    static constexpr std::size_t MAX_MESSAGE_BYTES = std::size_t{1} << 20;

    /// How large a log file may grow when nothing else is configured.
    static constexpr std::uint64_t DEFAULT_LIMIT_BYTES = std::uint64_t{10} << 20;
    static constexpr unsigned DEFAULT_OLDER_FILES = 3;

    DbgLogConsumerC(std::string name, PrefixKind prefix);
    virtual ~DbgLogConsumerC();
    DbgLogConsumerC(const DbgLogConsumerC&) = delete;
    DbgLogConsumerC& operator=(const DbgLogConsumerC&) = delete;

    // Seventeen operations that all consumers and the manager share, and start(), which comes behind them.

    /// Logs one message whatever its level. Log() is the front that looks at the level first.
    virtual void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments);
    virtual void logFormattedWide(int level, const wchar_t* format, UTI::FormatSourceI& arguments);

    /// Logs a text as it is; nothing in it is taken for a conversion.
    virtual void logText(int level, std::string_view text);

    /// Whether lines have somewhere to go. Nothing is made of a message while they have not.
    virtual bool isOpen() const noexcept;

    /// Puts what has been logged so far on the device. An assertion tells when that fails; false then.
    virtual bool flush();

    /// The lowest level that is logged from now on. Everything is, until this is called.
    virtual void setLevel(int level) noexcept;
    virtual int getLevel() const noexcept;
    virtual void setPrefixKind(PrefixKind prefix) noexcept;
    virtual PrefixKind getPrefixKind() const noexcept;

    /// Lines of this level and above are handed over to the system before Log returns; those below may wait
    /// (ERROR, unless this is called).
    virtual void setFlushLevel(int level) noexcept;
    virtual int getFlushLevel() const noexcept;

    /// How large the consumer's file may grow, 0 without limit, and how many older files are kept. Means
    /// nothing to consumers that have no file.
    virtual void setLimit(std::uint64_t limitBytes) noexcept;
    virtual std::uint64_t getLimit() const noexcept;
    virtual void setOlderFiles(unsigned nOlderFiles) noexcept;
    virtual unsigned getOlderFiles() const noexcept;

    /// With line splitting on, the lines of a message are written bare, without the consumer's name and their
    /// number.
    virtual void setLineSplitting(bool bSplit) noexcept;
    virtual const std::string& getName() const noexcept;

    /// Makes ready to write, for consumers that need more than a first line. RC_OK when they do not.
    [[nodiscard]] virtual ResultCodeT start();

    /// Logs one message if the consumer's level enables it. The format is that of BSS_UTI_Format.h. Costs one
    /// load and a branch if it does not.
    template<typename... Arguments>
    void Log(int level, const char* format, const Arguments&... arguments)
    {
        if (isEnabled(level)) LogEnabled(level, format, arguments...);
    }

    template<typename... Arguments>
    void Log(int level, const wchar_t* format, const Arguments&... arguments)
    {
        if (isEnabled(level)) LogEnabled(level, format, arguments...);
    }

    /// Whether messages of this level are logged.
    bool isEnabled(int level) const noexcept { return level >= m_level.load(std::memory_order_relaxed); }

    /// Sets what a configuration line says.
    void apply(const LogSettingsT& settings) noexcept;

    /// Whether the calling thread is inside a consumer's write at this moment.
    static bool isWriting() noexcept;

protected:
    /// What is known of a message beside its text.
    struct LogMomentT
    {
        int level = 0;
        HAL::WallTime time;
    };

    /// Writes whole lines, each ended by "\n". One call at a time. An exception, whatever its type, and false
    /// are told on the debugger output.
    virtual bool write(std::string_view lines) = 0;

    /// Puts everything on the device. One call at a time; none of them during a write, unless write() itself
    /// flushes the consumer.
    virtual bool flushDevice();

    /// Flushes, under the lock.
    virtual bool flushLines();

    /// When the lines that write() is given were logged, whether they are written bare, and whether they must
    /// be handed over to the system at once. For write() only.
    const HAL::WallTime& writeTime() const noexcept { return m_writeMoment.time; }
    bool writesBareLines() const noexcept { return m_bLineSplitting.load(std::memory_order_relaxed); }
    bool writeMustHandOver() const noexcept
    {
        return m_writeMoment.level >= m_flushLevel.load(std::memory_order_relaxed);
    }

    /// For a consumer that passes on to others.
    static bool FlushLinesOf(DbgLogConsumerC& consumer);

    /// Tells on the debugger output that a message could not be written.
    void reportFailure() const noexcept;

private:
    template<typename... Arguments>
    [[gnu::noinline]] void LogEnabled(int level, const char* format, const Arguments&... arguments)
    {
        const std::array<UTI::FormatArgumentC, sizeof...(Arguments)> row{UTI::FormatArgumentC(arguments)...};
        UTI::FormatArgumentsC source(row.data(), row.size());
        logFormatted(level, format, source);
    }

    template<typename... Arguments>
    [[gnu::noinline]] void LogEnabled(int level, const wchar_t* format, const Arguments&... arguments)
    {
        const std::array<UTI::FormatArgumentC, sizeof...(Arguments)> row{UTI::FormatArgumentC(arguments)...};
        UTI::FormatArgumentsC source(row.data(), row.size());
        logFormattedWide(level, format, source);
    }

    template<typename MakeT>
    void Guarded(const MakeT& make);
    bool writeMessage(int level, const char* format, UTI::FormatSourceI& arguments);
    bool writeText(const LogMomentT& moment, std::string_view prefix, std::string_view message);
    bool writeLines(const LogMomentT& moment, std::string_view lines);
    void awaitTurn() const noexcept;
    std::size_t maxLineBytes() const noexcept;

    const std::string m_name;
    const std::string m_shownName; // the name as lines show it
    std::atomic<PrefixKind> m_prefix;
    std::atomic<int> m_level;
    std::atomic<int> m_flushLevel;
    std::atomic<std::uint64_t> m_limitBytes{DEFAULT_LIMIT_BYTES};
    std::atomic<unsigned> m_nOlderFiles{DEFAULT_OLDER_FILES};
    std::atomic<bool> m_bLineSplitting{false};
    std::atomic<bool> m_bHandingOver{false}; // somebody is inside write(), with a line that does not wait
    TSK::MutexC m_lock;
    LogMomentT m_writeMoment; // guarded by the lock
};

} // namespace BSS::DBG
