// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The upper end of reporting: over the log manager and the registry, which the header knows nothing of. The
// text is made in parts, so that the expression can only ever consume the two values that belong to it and
// the type of a panic is printed whatever its format says. After the library's end, and inside a log
// consumer, the debugger output is all that is left.
#include "Bss/Bss_Err/BSS_ERR_Report.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"
#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <memory>
#include <string>

namespace BSS::ERR {

namespace {

constexpr char CUT[] = "... (cut)";

void ToDebugOutput(const std::string& text)
{
    HAL::DebugOutput(HAL::WideFromUtf8(DBG::AsOneLine(text)).c_str());
}

// Gives integers and nothing else, so that no text in an expression makes the formatter read memory.
class ReportValues final : public UTI::FormatSourceI
{
public:
    ReportValues(std::uint32_t first, std::uint32_t second) noexcept : m_values{first, second} {}

    bool TakeInteger(std::size_t, std::uint64_t& value) override
    {
        if (m_taken == 2) return false;
        value = m_values[m_taken++];
        return true;
    }

private:
    std::uint32_t m_values[2];
    std::size_t m_taken = 0;
};

std::string ReportText(const char* kind, const char* expression, std::uint32_t first, std::uint32_t second,
                       const char* file, std::int32_t line, const std::string& end)
{
    std::string text = UTI::Format("<<%s at %s(%d): ", kind, file, line);
    ReportValues values(first, second);
    if (!UTI::AppendFormat(text, UTI::FORMAT_MAX_CHARS, expression, values)) text += CUT;
    return text + end;
}

// A lock whose event the system refuses throws; a report must not. What a handler throws is the handler's
// affair.
template<typename ReportT>
auto WithoutSystemErrors(ReportT report, decltype(report()) otherwise) -> decltype(report())
{
    try {
        return report();
    } catch (const SysServiceErrorC& error) {
        ToDebugOutput(error.what());
        return otherwise;
    }
}

bool OnlyDebugOutputIsLeft() noexcept
{
    return DBG::DbgLogConsumerC::isWriting() || DBG::DbgLogMgrC::isGone();
}

// False when the report must not go further than the debugger output.
bool LogReport(int level, const std::string& text)
{
    if (OnlyDebugOutputIsLeft()) {
        ToDebugOutput(text);
        return false;
    }
    const std::shared_ptr<DBG::DbgLogConsumerC> logger = DBG::DbgLogMgrC::instance().getSystemErrorLogger();
    if (logger) logger->Log(level, "%s", text);
    return !PanicHandlerRegistryIsGone();
}

} // namespace

bool AssertFailed(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                  std::int32_t line)
{
    const std::string text = ReportText("ASSERT", expression, first, second, file, line, ">>\n");
    return WithoutSystemErrors(
        [&] {
            if (!LogReport(DBG::LEVEL_ERROR, text)) return true;
            return GetPanicHandlerRegistry().Assert(expression, first, second, file, line);
        },
        true);
}

void Panic(const char* format, std::uint32_t, std::uint32_t first, std::uint32_t second, const char* file,
           std::int32_t line)
{
    const std::string end = UTI::Format(" - type 0x%lx>>\n", PANIC_TYPE);
    const std::string text = ReportText("PANIC", format, first, second, file, line, end);
    WithoutSystemErrors(
        [&] {
            if (!LogReport(DBG::LEVEL_FATAL, text)) return false;
            GetPanicHandlerRegistry().Panic(format, PANIC_TYPE, first, second, file, line);
            return true;
        },
        false);
}

} // namespace BSS::ERR
