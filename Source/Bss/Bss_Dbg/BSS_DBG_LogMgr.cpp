// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogFileName.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogOutputDebugStringConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogPrintfConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_SubLogManager.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"
#include "Bss/Bss_Os/BSS_OS_Configuration.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace BSS::DBG {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Dbg\BSS_DBG_LogMgr)";

constexpr char SYSTEM_ERROR_LOGGER[] = "SystemErrorLogger";
constexpr char TCP_IP[] = "TcpIp";
constexpr char SPLIT_LINES[] = "nmea";

using GuardT = std::lock_guard<TSK::MutexC>;

constinit std::atomic<bool> s_gone = false;
constinit std::atomic<DbgLogMgrC::ConsumerMakerT> s_tcpIpMaker = nullptr;

std::shared_ptr<DbgLogConsumerC> MakeNamedFile(const std::string& name, const wchar_t* file)
{
    const std::uint64_t limit =
        OS::ReadErrorLogLimitBytes(OS::PlatformConfigStore(), DbgLogConsumerC::DEFAULT_LIMIT_BYTES);
    return std::make_shared<DbgLogFileConsumerC>(name, file, limit);
}

void ReportForeignIterator()
{
    ERR::AssertFailed("This function must be called with an iterator pointing to one of our log files.", 0, 0,
                      BSS_SOURCE_NAME, __LINE__);
}

} // namespace

DbgLogMgrC::DbgLogMgrC() : DbgLogConsumerC("DbgLogMgr", PrefixKind::Full)
{
    OS::PreparePathMap(); // every line uses it, so it must outlive the manager
    m_pSystemErrorLogger = MakeNamedFile(SYSTEM_ERROR_LOGGER, L"ErrorLog.txt");
    m_consumers[SYSTEM_ERROR_LOGGER] = m_pSystemErrorLogger;
    readConfiguration();
}

DbgLogMgrC::~DbgLogMgrC()
{
    s_gone.store(true);
}

DbgLogMgrC& DbgLogMgrC::instance()
{
    static DbgLogMgrC manager;
    return manager;
}

bool DbgLogMgrC::isGone() noexcept
{
    return s_gone.load();
}

DbgLogMgrC::ConsumerPtrT DbgLogMgrC::getConsumer(const std::string& name, const std::string& secondName)
{
    {
        const GuardT guard(m_lock);
        const auto found = m_consumers.find(name);
        if (found != m_consumers.end()) return found->second;
    }
    const ConsumerPtrT made = make(name, secondName);
    if (!made && name == TCP_IP) {
        const ResultCodeT rc = RC_OBJECT_MISSING;
        BSS_ASSERT(rc == RC_OK);
    }
    if (!made) return nullptr;
    {
        const GuardT guard(m_lock);
        const auto [place, inserted] = m_consumers.emplace(name, made);
        if (!inserted) return place->second; // another thread was first
        applyConfiguration(name, *made);
    }
    const ResultCodeT rc = made->start();
    BSS_ASSERT(rc == RC_OK);
    return made;
}

// The factory. Nothing of what it makes has an effect outside before it is started or logged to.
DbgLogMgrC::ConsumerPtrT DbgLogMgrC::make(const std::string& name, const std::string& secondName) const
{
    if (name == "printf") return std::make_shared<DbgLogPrintfConsumerC>(name);
    if (name == "OutputDebugString") return std::make_shared<DbgLogOutputDebugStringConsumerC>(name);
    if (name == "/sensorboard/") return nullptr;
    if (name == "LoaderLog") return MakeNamedFile(name, L"LoaderLog.txt");
    if (name == TCP_IP) {
        const ConsumerMakerT maker = s_tcpIpMaker.load();
        return maker != nullptr ? maker(name) : nullptr;
    }
    const auto file = std::make_shared<DbgLogFileConsumerC>(name, LogFileNameOf(name));
    file->setLineSplitting(secondName == SPLIT_LINES);
    return file;
}

DbgLogMgrC::ConsumerPtrT DbgLogMgrC::getSystemErrorLogger() const
{
    ConsumerPtrT logger;
    {
        const GuardT guard(m_lock);
        logger = m_pSystemErrorLogger;
    }
    if (!logger) {
        HAL::DebugOutput(L"BSS::DBG::DbgLogMgrC::getSystemErrorLogger m_pSystemErrorLogger is NULL\r\n");
    }
    return logger;
}

void DbgLogMgrC::setSystemErrorLogger(ConsumerPtrT consumer)
{
    const GuardT guard(m_lock);
    m_pSystemErrorLogger.swap(consumer);
}

void DbgLogMgrC::registerSubManager(SubLogManagerC& subManager)
{
    bool added = false;
    {
        const GuardT guard(m_subManagerLock);
        added = m_subManagers.insert(&subManager).second;
    }
    // The report is made without the lock, in the words of the check.
    if (!added)
        ERR::AssertFailed("m_subManagers.find(&subManager) == m_subManagers.end()", 0, 0, BSS_SOURCE_NAME,
                          __LINE__);
}

void DbgLogMgrC::unregisterSubManager(SubLogManagerC& subManager)
{
    const GuardT guard(m_subManagerLock);
    m_subManagers.erase(&subManager);
}

bool DbgLogMgrC::configure(std::string_view line)
{
    if (IsEmptyLogConfigLine(line)) return true;
    const std::optional<LogConfigLineT> read = ParseLogConfigLine(line);
    if (!read) return false;
    {
        const GuardT guard(m_lock);
        m_configuration.Add(*read);
        const bool every = read->consumer == EVERY_CONSUMER;
        for (const auto& [name, consumer] : m_consumers)
            if (every ? !m_configuration.HasOwn(name) : name == read->consumer)
                applyConfiguration(name, *consumer);
    }
    if (!read->notUnderstood.empty())
        Log(LEVEL_WARN, "the line of configuration for %s counts only up to \"%s\"", read->consumer,
            read->notUnderstood);
    return true;
}

void DbgLogMgrC::readConfiguration()
{
    const LogConfigFileT file = ReadLogConfigurationFile();
    if (file.state == LogConfigFileState::TooLarge)
        Log(LEVEL_WARN, "logging.conf is larger than %I64u bytes and is left out", MAX_LOG_CONFIG_BYTES);
    if (file.state == LogConfigFileState::Unreadable) Log(LEVEL_WARN, "logging.conf cannot be read");
    if (file.state != LogConfigFileState::Read) return;
    std::vector<LogConfigFaultT> faults;
    {
        const GuardT guard(m_lock);
        faults = m_configuration.ReplaceFile(file.text);
        for (const auto& [name, consumer] : m_consumers)
            applyAnew(name, *consumer);
    }
    tellFaults(faults);
}

void DbgLogMgrC::tellFaults(const std::vector<LogConfigFaultT>& faults) const
{
    const ConsumerPtrT logger = faults.empty() ? nullptr : getSystemErrorLogger();
    if (!logger) return;
    for (const LogConfigFaultT& fault : faults)
        logger->Log(LEVEL_WARN,
                    fault.bInPart ? "logging.conf: line %u can be read only in part, its end is left out"
                                  : "logging.conf: line %u cannot be read and is left out",
                    fault.line);
}

void DbgLogMgrC::applyConfiguration(const std::string& name, DbgLogConsumerC& consumer)
{
    const LogSettingsT* const settings = m_configuration.Find(name);
    if (settings == nullptr) return;
    m_unconfigured.try_emplace(name, UnconfiguredT{consumer.getLevel(), consumer.getPrefixKind(),
                                                   consumer.getLimit(), consumer.getOlderFiles()});
    consumer.apply(*settings);
}

// As applyConfiguration, and what earlier lines have set and no line sets any more is taken back.
void DbgLogMgrC::applyAnew(const std::string& name, DbgLogConsumerC& consumer)
{
    const LogSettingsT* const settings = m_configuration.Find(name);
    if (const auto found = m_unconfigured.find(name); found != m_unconfigured.end()) {
        const UnconfiguredT& before = found->second;
        if (settings == nullptr) consumer.setLevel(before.level);
        if (settings == nullptr || !settings->prefixKind) consumer.setPrefixKind(before.prefix);
        if (settings == nullptr || !settings->limitKib) consumer.setLimit(before.limitBytes);
        if (settings == nullptr || !settings->nOlderFiles) consumer.setOlderFiles(before.nOlderFiles);
        if (settings == nullptr) m_unconfigured.erase(found);
    }
    applyConfiguration(name, consumer);
}

std::vector<DbgLogMgrC::ConsumerPtrT> DbgLogMgrC::consumers() const
{
    const GuardT guard(m_lock);
    std::vector<ConsumerPtrT> all;
    for (const auto& [name, consumer] : m_consumers)
        all.push_back(consumer);
    const auto known = m_consumers.find(SYSTEM_ERROR_LOGGER);
    if (m_pSystemErrorLogger && (known == m_consumers.end() || known->second != m_pSystemErrorLogger))
        all.push_back(m_pSystemErrorLogger);
    return all;
}

// The logger, if it takes messages of that level.
DbgLogMgrC::ConsumerPtrT DbgLogMgrC::loggerFor(int level) const noexcept
try {
    const ConsumerPtrT logger = getSystemErrorLogger();
    return logger && logger->isEnabled(level) ? logger : nullptr;
} catch (const std::exception&) {
    reportFailure(); // no event for the lock
    return nullptr;
}

void DbgLogMgrC::logFormatted(int level, const char* format, UTI::FormatSourceI& arguments)
{
    if (const ConsumerPtrT logger = loggerFor(level)) logger->logFormatted(level, format, arguments);
}

void DbgLogMgrC::logFormattedWide(int level, const wchar_t* format, UTI::FormatSourceI& arguments)
{
    if (const ConsumerPtrT logger = loggerFor(level)) logger->logFormattedWide(level, format, arguments);
}

void DbgLogMgrC::logText(int level, std::string_view text)
{
    if (const ConsumerPtrT logger = loggerFor(level)) logger->logText(level, text);
}

// Messages are passed on before they are lines.
bool DbgLogMgrC::write(std::string_view)
{
    return false;
}

bool DbgLogMgrC::flushLines()
{
    bool flushed = true;
    // One that fails, by whatever it throws, does not keep the others from being flushed.
    const auto flushOne = [&flushed](const auto& flushIt) {
        try {
            flushed = flushIt() && flushed;
        } catch (...) {
            flushed = false;
        }
    };
    for (const ConsumerPtrT& consumer : consumers())
        flushOne([&] { return FlushLinesOf(*consumer); });
    const GuardT guard(m_subManagerLock);
    // Of a copy, as one of them may take itself or another back while it is flushed.
    for (SubLogManagerC* const subManager : std::vector(m_subManagers.begin(), m_subManagers.end()))
        if (m_subManagers.count(subManager) != 0) flushOne([&] { return subManager->flushLogs(); });
    return flushed;
}

DbgLogFileIteratorC DbgLogMgrC::logFileAfter(const std::string* name) const
{
    const GuardT guard(m_lock);
    auto at = name == nullptr ? m_consumers.begin() : m_consumers.upper_bound(*name);
    while (at != m_consumers.end() && !std::dynamic_pointer_cast<DbgLogFileConsumerC>(at->second))
        ++at;
    return at == m_consumers.end() ? DbgLogFileIteratorC() : DbgLogFileIteratorC(at->first, at->second);
}

bool DbgLogMgrC::isOurs(const DbgLogFileIteratorC& logFile) const
{
    const ConsumerPtrT file = logFile.m_file.lock();
    const GuardT guard(m_lock);
    const auto found = m_consumers.find(logFile.m_name);
    return file && found != m_consumers.end() && found->second == file;
}

DbgLogFileIteratorC DbgLogMgrC::firstLogFile() const
{
    return logFileAfter(nullptr);
}

void DbgLogMgrC::nextLogFile(DbgLogFileIteratorC& logFile) const
{
    if (!isOurs(logFile)) {
        ReportForeignIterator();
        return;
    }
    const std::string name = logFile.m_name;
    logFile = logFileAfter(&name);
}

std::wstring DbgLogMgrC::getLogFilePath(const DbgLogFileIteratorC& logFile) const
{
    if (!isOurs(logFile)) {
        ReportForeignIterator();
        return {};
    }
    const auto file = std::dynamic_pointer_cast<DbgLogFileConsumerC>(logFile.m_file.lock());
    return file ? file->path() : std::wstring();
}

void DbgLogMgrC::setTcpIpConsumerMaker(ConsumerMakerT maker) noexcept
{
    s_tcpIpMaker.store(maker);
}

} // namespace BSS::DBG
