// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The thread's own flag is set around formatting and writing, never around anything of the
// caller. A message that is one plain line, as nearly all are, is made in place on the stack, prefix and all.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogConfigLine.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogPrefix.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <mutex>
#include <utility>

namespace BSS::DBG {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Dbg\BSS_DBG_LogConsumer)";

constexpr std::size_t LINE_END = sizeof "\n"; // and the terminator
constexpr unsigned KIB_SHIFT = 10;
constexpr std::size_t LONGEST_PREFIX = 512; // a thread's name of 63 bytes, each written as four, and the rest
constexpr char CUT[] = "... (cut)";

void ToDebugOutput(std::string_view text)
{
    HAL::DebugOutput(HAL::WideFromUtf8(AsOneLine(text)).c_str());
}

constinit thread_local bool t_writing = false;

class WritingScope
{
public:
    WritingScope() noexcept { t_writing = true; }
    ~WritingScope() { t_writing = m_before; }
    WritingScope(const WritingScope&) = delete;
    WritingScope& operator=(const WritingScope&) = delete;

private:
    const bool m_before = t_writing;
};

// Says to those who come that the lock will be held for a moment. A hint: what counts is the lock.
class HandOverMark
{
public:
    HandOverMark(std::atomic<bool>& mark, bool bHandOver) noexcept : m_mark(mark), m_bHandOver(bHandOver)
    {
        if (m_bHandOver) m_mark.store(true, std::memory_order_relaxed);
    }
    ~HandOverMark()
    {
        if (m_bHandOver) m_mark.store(false, std::memory_order_relaxed);
    }
    HandOverMark(const HandOverMark&) = delete;
    HandOverMark& operator=(const HandOverMark&) = delete;

private:
    std::atomic<bool>& m_mark;
    const bool m_bHandOver;
};

// A log call leaves no trace in errno: who logs a failure may still want to know it.
class ErrnoKeeper
{
public:
    ErrnoKeeper() noexcept = default;
    ~ErrnoKeeper() { m_errno = m_before; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
    int& m_errno = errno;
    const int m_before = m_errno;
};

// The line buffer, and behind it a string for what is longer.
class MessageOutC final : public UTI::FormatOutT<char>
{
public:
    MessageOutC(char* buffer, std::size_t capacity) noexcept
        : FormatOutT(buffer, capacity), m_capacity(capacity)
    {}

    bool FitsTheBuffer() const noexcept { return m_longer.empty(); }

    std::string Whole() const { return m_longer + std::string(Begin(), Length()); }

private:
    std::size_t Drain() override
    {
        m_longer.append(Begin(), Length());
        const std::size_t most = DbgLogConsumerC::MAX_MESSAGE_BYTES;
        const std::size_t left = m_longer.size() < most ? most - m_longer.size() : 0;
        if (left == 0) Restart(0);
        return std::min(left, m_capacity);
    }

    const std::size_t m_capacity;
    std::string m_longer;
};

std::string CutMark()
{
    return UTI::Format("\n(the message was longer than %u bytes; the rest is left out)",
                       DbgLogConsumerC::MAX_MESSAGE_BYTES);
}

} // namespace

DbgLogConsumerC::DbgLogConsumerC(std::string name, PrefixKind prefix)
    : m_name(std::move(name)), m_shownName(ShownName(m_name)), m_prefix(prefix), m_level(LEVEL_FINEST),
      m_flushLevel(LEVEL_ERROR)
{}

DbgLogConsumerC::~DbgLogConsumerC() = default;

// Runs what makes and writes a message, and tells when it could not. Whatever a consumer throws ends here:
// nobody who logs expects an exception, of whatever type. Only a thread that is cancelled may unwind from
// here, when the message is written.
template<typename MakeT>
void DbgLogConsumerC::Guarded(const MakeT& make)
{
    const ErrnoKeeper keeper;
    bool written = false;
    HAL::Undisturbed([&]() noexcept {
        try {
            const WritingScope scope;
            written = make();
        } catch (...) {
            written = false;
        }
        if (!written) reportFailure(); // in here: it holds a lock as well
    });
}

void DbgLogConsumerC::logFormatted(int level, const char* format, UTI::FormatSourceI& arguments)
{
    if (t_writing) {
        try {
            std::string text;
            const bool whole = UTI::AppendFormat(text, s_iLOG_LINE_BUFFER_SIZE, format, arguments);
            ToDebugOutput(whole ? text : text + CUT);
        } catch (const std::exception&) {
            reportFailure();
        }
        return;
    }
    if (!isOpen()) return;
    Guarded([&] { return writeMessage(level, format, arguments); });
}

void DbgLogConsumerC::logFormattedWide(int level, const wchar_t* format, UTI::FormatSourceI& arguments)
{
    if (!isOpen()) return;
    try {
        std::wstring text;
        const bool whole = UTI::AppendFormat(text, MAX_MESSAGE_BYTES, format, arguments);
        logText(level, HAL::Utf8FromWide(text) + (whole ? "" : CutMark()));
    } catch (const std::exception&) {
        reportFailure();
    }
}

void DbgLogConsumerC::logText(int level, std::string_view text)
{
    if (t_writing) {
        try {
            ToDebugOutput(text);
        } catch (const std::exception&) {
            reportFailure();
        }
        return;
    }
    if (!isOpen()) return;
    Guarded([&] {
        char prefix[LONGEST_PREFIX];
        UTI::FormatOutT<char> out(prefix, sizeof prefix);
        const HAL::WallTime now = HAL::WallTimeNow();
        PutPrefix(out, getPrefixKind(), level, now);
        return writeText({level, now}, std::string_view(prefix, out.Length()), text);
    });
}

bool DbgLogConsumerC::isOpen() const noexcept
{
    return true;
}

bool DbgLogConsumerC::flush()
{
    const ErrnoKeeper keeper;
    bool flushed = false;
    HAL::Undisturbed([&]() noexcept {
        try {
            flushed = flushLines();
        } catch (...) {
            flushed = false; // as for a message
        }
    });
    if (!flushed) BSS_ASSERT(!"Failed flushing logs!");
    return flushed;
}

void DbgLogConsumerC::setLevel(int level) noexcept
{
    m_level.store(level, std::memory_order_relaxed);
}

int DbgLogConsumerC::getLevel() const noexcept
{
    return m_level.load(std::memory_order_relaxed);
}

void DbgLogConsumerC::setPrefixKind(PrefixKind prefix) noexcept
{
    m_prefix.store(prefix, std::memory_order_relaxed);
}

PrefixKind DbgLogConsumerC::getPrefixKind() const noexcept
{
    return m_prefix.load(std::memory_order_relaxed);
}

void DbgLogConsumerC::setFlushLevel(int level) noexcept
{
    m_flushLevel.store(level, std::memory_order_relaxed);
}

int DbgLogConsumerC::getFlushLevel() const noexcept
{
    return m_flushLevel.load(std::memory_order_relaxed);
}

void DbgLogConsumerC::setLimit(std::uint64_t limitBytes) noexcept
{
    m_limitBytes.store(limitBytes, std::memory_order_relaxed);
}

std::uint64_t DbgLogConsumerC::getLimit() const noexcept
{
    return m_limitBytes.load(std::memory_order_relaxed);
}

void DbgLogConsumerC::setOlderFiles(unsigned nOlderFiles) noexcept
{
    m_nOlderFiles.store(nOlderFiles, std::memory_order_relaxed);
}

unsigned DbgLogConsumerC::getOlderFiles() const noexcept
{
    return m_nOlderFiles.load(std::memory_order_relaxed);
}

void DbgLogConsumerC::setLineSplitting(bool bSplit) noexcept
{
    m_bLineSplitting.store(bSplit, std::memory_order_relaxed);
}

const std::string& DbgLogConsumerC::getName() const noexcept
{
    return m_name;
}

ResultCodeT DbgLogConsumerC::start()
{
    return RC_OK;
}

void DbgLogConsumerC::apply(const LogSettingsT& settings) noexcept
{
    setLevel(settings.level);
    if (settings.prefixKind) setPrefixKind(static_cast<PrefixKind>(*settings.prefixKind));
    if (settings.limitKib) setLimit(static_cast<std::uint64_t>(*settings.limitKib) << KIB_SHIFT);
    if (settings.nOlderFiles) setOlderFiles(*settings.nOlderFiles);
}

bool DbgLogConsumerC::isWriting() noexcept
{
    return t_writing;
}

bool DbgLogConsumerC::flushDevice()
{
    return true;
}

// Who hands a line over to the system holds the lock for about a microsecond, which is less than going to
// sleep and being woken take. The lock looks less and less often whether it is free, and would miss the
// moment between two lines of a thread that logs much; so a wait for that moment comes first.
void DbgLogConsumerC::awaitTurn() const noexcept
{
    constexpr int LONGEST_WAIT = 128; // pauses, two to six microseconds
    for (int i = 0; i < LONGEST_WAIT && m_bHandingOver.load(std::memory_order_relaxed); ++i)
        HAL::SpinPause();
}

bool DbgLogConsumerC::writeLines(const LogMomentT& moment, std::string_view lines)
{
    if (m_bHandingOver.load(std::memory_order_relaxed)) awaitTurn();
    const std::lock_guard<TSK::MutexC> guard(m_lock);
    m_writeMoment = moment;
    const HandOverMark mark(m_bHandingOver, writeMustHandOver()); // goes before the lock does
    return write(lines);
}

bool DbgLogConsumerC::flushLines()
{
    const WritingScope scope;
    const std::lock_guard<TSK::MutexC> guard(m_lock);
    return flushDevice();
}

bool DbgLogConsumerC::FlushLinesOf(DbgLogConsumerC& consumer)
{
    return consumer.flushLines();
}

bool DbgLogConsumerC::writeMessage(int level, const char* format, UTI::FormatSourceI& arguments)
{
    char m_pszPrintBuffer[s_iLOG_LINE_BUFFER_SIZE]; // each call's own; the reports below show this name
    MessageOutC out(m_pszPrintBuffer, s_iLOG_LINE_BUFFER_SIZE - LINE_END);
    const LogMomentT moment{level, HAL::WallTimeNow()};
    PutPrefix(out, m_prefix.load(std::memory_order_relaxed), level, moment.time);
    const std::size_t prefixLength = out.Length();
    const bool whole = UTI::FormatTo(out, format, arguments);
    if (!out.FitsTheBuffer()) {
        const std::string text = out.Whole() + (whole ? "" : CutMark());
        return writeText(moment, std::string_view(text).substr(0, prefixLength),
                         std::string_view(text).substr(prefixLength));
    }
    const std::string_view prefix(m_pszPrintBuffer, prefixLength);
    const std::string_view message =
        WithoutLineEnd({m_pszPrintBuffer + prefixLength, out.Length() - prefixLength});
    std::size_t iEndpos = prefixLength + message.size();
    if (!IsPlainLine(message) || iEndpos + LINE_END > maxLineBytes())
        return writeText(moment, prefix, message);
    m_pszPrintBuffer[iEndpos++] = '\n';
    BSS_ASSERT(iEndpos < s_iLOG_LINE_BUFFER_SIZE);
    m_pszPrintBuffer[iEndpos] = '\0';
    BSS_ASSERT(strlen(m_pszPrintBuffer) < s_iLOG_LINE_BUFFER_SIZE);
    return writeLines(moment, std::string_view(m_pszPrintBuffer, iEndpos));
}

bool DbgLogConsumerC::writeText(const LogMomentT& moment, std::string_view prefix, std::string_view message)
{
    const LogLayoutT layout{m_shownName, prefix, writesBareLines(), maxLineBytes()};
    return writeLines(moment, LinesOfMessage(layout, message));
}

std::size_t DbgLogConsumerC::maxLineBytes() const noexcept
{
    const std::uint64_t limit = m_limitBytes.load(std::memory_order_relaxed);
    const std::size_t most = s_iLOG_LINE_BUFFER_SIZE - 1;
    return limit == 0 || limit > most ? most : static_cast<std::size_t>(limit);
}

void DbgLogConsumerC::reportFailure() const noexcept
try {
    HAL::DebugOutput(
        UTI::Format(L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (%S)!\n", m_shownName)
            .c_str());
} catch (const std::exception&) {
    HAL::DebugOutput(L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log ()!\n");
}

} // namespace BSS::DBG
