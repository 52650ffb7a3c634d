// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The thread's own flag is set around formatting and writing, never around anything of the
// caller.
#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <cstring>
#include <exception>
#include <utility>
#include <vector>

namespace BSS::DBG {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Dbg\BSS_DBG_LogConsumer)";

constinit thread_local bool t_writing = false;

class WritingScope
{
public:
    WritingScope() noexcept { t_writing = true; }
    ~WritingScope() { t_writing = false; }
    WritingScope(const WritingScope&) = delete;
    WritingScope& operator=(const WritingScope&) = delete;
};

void ToDebugOutput(const char* format, UTI::FormatSourceI& arguments)
{
    std::string text;
    static_cast<void>(
        UTI::AppendFormat(text, DbgLogConsumerC::s_iLOG_LINE_BUFFER_SIZE - 1, format, arguments));
    HAL::DebugOutput(HAL::WideFromUtf8(text).c_str());
}

LogLineContextT CurrentContext(int level)
{
    LogLineContextT context;
    context.localTime = HAL::LocalTimeNow();
    context.utcTime = HAL::UtcTimeNow();
    context.threadName = HAL::CurrentThreadName();
    context.threadId = HAL::CurrentThreadId();
    context.threadPriority = HAL::CurrentThreadPriority();
    context.level = level;
    return context;
}

} // namespace

DbgLogConsumerC::DbgLogConsumerC(std::string name, PrefixKind prefix)
    : m_name(std::move(name)), m_prefix(prefix), m_level(LEVEL_FINEST)
{}

DbgLogConsumerC::~DbgLogConsumerC() = default;

void DbgLogConsumerC::logFormatted(int level, const char* format, UTI::FormatSourceI& arguments)
{
    bool written = false;
    try {
        if (t_writing) {
            ToDebugOutput(format, arguments);
            return;
        }
        const WritingScope scope;
        written = writeMessage(level, format, arguments);
    } catch (const std::exception&) {
        written = false;
    }
    if (!written) reportFailure();
}

bool DbgLogConsumerC::flush()
{
    return true;
}

void DbgLogConsumerC::setLevel(int level) noexcept
{
    m_level.store(level, std::memory_order_relaxed);
}

const std::string& DbgLogConsumerC::getName() const noexcept
{
    return m_name;
}

bool DbgLogConsumerC::isWriting() noexcept
{
    return t_writing;
}

bool DbgLogConsumerC::writeMessage(int level, const char* format, UTI::FormatSourceI& arguments)
{
    const TSK::GuardC guard(m_lock);
    std::string message;
    static_cast<void>(UTI::AppendFormat(message, s_iLOG_LINE_BUFFER_SIZE - 1, format, arguments));
    const std::size_t iEndpos = message.size();
    BSS_ASSERT(iEndpos < s_iLOG_LINE_BUFFER_SIZE);
    std::memcpy(m_pszPrintBuffer, message.data(), iEndpos);
    m_pszPrintBuffer[iEndpos] = '\0';
    BSS_ASSERT(strlen(m_pszPrintBuffer) < s_iLOG_LINE_BUFFER_SIZE);
    return write(linesOf(level, std::string_view(m_pszPrintBuffer, iEndpos)));
}

std::string DbgLogConsumerC::linesOf(int level, std::string_view message) const
{
    const std::vector<std::string_view> parts = SplitMessage(message);
    const LogLineContextT context = CurrentContext(level);
    std::string lines;
    int number = 0;
    for (const std::string_view part : parts) {
        const std::string clean = WithoutControls(part);
        ++number;
        const std::string line =
            parts.size() == 1 ? clean + "\n" : UTI::Format("%s: %03d, %s\n", m_name, number, clean);
        lines += PrefixedLine(m_prefix, context, line);
    }
    return lines;
}

void DbgLogConsumerC::reportFailure() const noexcept
try {
    HAL::DebugOutput(
        UTI::Format(L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log (%S)!\n", m_name).c_str());
} catch (const std::exception&) {
    HAL::DebugOutput(L"BSS::DBG::DbgLogMgrC::logWrite ERROR while writing to log ()!\n");
}

} // namespace BSS::DBG
