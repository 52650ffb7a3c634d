// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The process's log manager: makes and keeps the log consumers, each under its name, and owns the system
// error logger, to which assertions and panics go. It is a consumer itself; what is logged on it goes to the
// system error logger, if that is enabled for its level. Only a call below the manager's own level costs next
// to nothing: the logger's is looked at behind a lock. Made on first use, when it reads the log
// configuration, and destroyed when the process ends or the library is unloaded, after the panic handler
// registry. Safe from any thread; none of its locks is held while a consumer writes or is made. They are held
// while settings are applied to consumers, and while sub-managers flush.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConfiguration.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileIterator.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace BSS::DBG {

class SubLogManagerC;

class DbgLogMgrC final : public DbgLogConsumerC
{
public:
    using ConsumerPtrT = std::shared_ptr<DbgLogConsumerC>;
    using ConsumerMakerT = ConsumerPtrT (*)(const std::string& name);

    /// The one manager. Must not be called once isGone().
    static DbgLogMgrC& instance();

    /// True once the manager has been destroyed: a report then has only the debugger output left.
    static bool isGone() noexcept;

    /// The consumer of that name, made when it is first asked for:
    ///   - "printf": standard output; "OutputDebugString": debugger output; "TcpIp": clients on port 10002;
    ///   - "/sensorboard/": none, the pointer is empty;
    ///   - "SystemErrorLogger": the file "ErrorLog.txt"; "LoaderLog": the file "LoaderLog.txt";
    ///   - any other: a file of the consumer's name. With the second name "nmea" its lines are written bare.
    /// Case matters. Files are made by their first line, not by this. A TCP/IP server that does not start is
    /// reported by an assertion; so is a program that has no TCP/IP consumer, and the pointer is empty then.
    ConsumerPtrT getConsumer(const std::string& name, const std::string& secondName = {});

    /// The consumer "SystemErrorLogger". Null, and told on the debugger output, when there is none.
    ConsumerPtrT getSystemErrorLogger() const;

    /// Puts another consumer in its place; null takes it away. getConsumer still answers the first one.
    void setSystemErrorLogger(ConsumerPtrT consumer);

    /// Adds a sub-manager, to be flushed with the manager. An assertion tells when it is there already. Not
    /// owned; to be taken back before it is destroyed.
    void registerSubManager(SubLogManagerC& subManager);

    /// Takes a sub-manager back. When this returns it is not being flushed any more.
    void unregisterSubManager(SubLogManagerC& subManager);

    /// Applies one line of configuration (BSS_DBG_LogConfigLine.h) now, to the consumer of that name, or to
    /// all that have no line of their own, and to those that are made later; to no other. False when it
    /// cannot be read. A line of which only the beginning is understood counts that far, and a warning on the
    /// system error logger says so.
    bool configure(std::string_view line);

    /// Reads the configuration file again and applies all of it. What an earlier reading has set and this one
    /// does not is as it was before the consumer's first line of configuration. A line that cannot be read,
    /// or only in part, is logged on the system error logger as a warning; so is a file that is larger than
    /// MAX_LOG_CONFIG_BYTES or cannot be read, which changes nothing.
    void readConfiguration();

    /// The first of the manager's log files, the one after another, and whether there was one. In the order
    /// of the consumers' names. Files of consumers that are made meanwhile are met or not.
    DbgLogFileIteratorC firstLogFile() const;
    void nextLogFile(DbgLogFileIteratorC& logFile) const;

    /// Where a log file is. An iterator that points to none of the manager's log files is reported; the
    /// answer is empty then.
    std::wstring getLogFilePath(const DbgLogFileIteratorC& logFile) const;

    /// How "TcpIp" consumers are made; null takes the maker away.
    static void setTcpIpConsumerMaker(ConsumerMakerT maker) noexcept;

    // What is logged here is logged on the system error logger, with its level, prefix and limits.
    void logFormatted(int level, const char* format, UTI::FormatSourceI& arguments) override;
    void logFormattedWide(int level, const wchar_t* format, UTI::FormatSourceI& arguments) override;
    void logText(int level, std::string_view text) override;

protected:
    bool write(std::string_view lines) override;
    bool flushLines() override;

private:
    // How a consumer was before a line of configuration was applied to it.
    struct UnconfiguredT
    {
        int level;
        PrefixKind prefix;
        std::uint64_t limitBytes;
        unsigned nOlderFiles;
    };

    DbgLogMgrC();
    ~DbgLogMgrC() override;

    ConsumerPtrT make(const std::string& name, const std::string& secondName) const;
    ConsumerPtrT loggerFor(int level) const noexcept;
    void applyConfiguration(const std::string& name, DbgLogConsumerC& consumer);
    void applyAnew(const std::string& name, DbgLogConsumerC& consumer);
    void tellFaults(const std::vector<LogConfigFaultT>& faults) const;
    std::vector<ConsumerPtrT> consumers() const;
    bool isOurs(const DbgLogFileIteratorC& logFile) const;
    DbgLogFileIteratorC logFileAfter(const std::string* name) const;

    mutable TSK::MutexC m_lock;
    std::map<std::string, ConsumerPtrT> m_consumers;
    ConsumerPtrT m_pSystemErrorLogger;
    LogConfigurationC m_configuration;
    std::map<std::string, UnconfiguredT> m_unconfigured; // of the consumers that lines have been applied to
    mutable TSK::MutexC m_subManagerLock;                // held while sub-managers are flushed
    std::set<SubLogManagerC*> m_subManagers;
};

} // namespace BSS::DBG
