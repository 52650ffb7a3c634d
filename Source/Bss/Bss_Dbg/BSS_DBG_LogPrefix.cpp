// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The slots are plain memory: nothing to construct when a thread first logs, nothing to free when it ends.
#include "Bss/Bss_Dbg/BSS_DBG_LogPrefix.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Thread.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace BSS::DBG {

namespace {

struct KeptPrefixT
{
    std::int64_t second;
    std::uint32_t threadVersion; // 0: nothing kept yet
    std::uint32_t length;
    std::uint32_t millisecondAt;
    char text[212];
};

constinit thread_local std::array<KeptPrefixT, 3> t_kept = {};

constexpr std::size_t UTC_DIGITS_FROM_END = 8; // "000 UTC]"

LogLineContextT ContextOf(std::int64_t second)
{
    LogLineContextT context;
    context.localTime = HAL::LocalTimeOf(second);
    context.utcTime = HAL::UtcTimeOf(second);
    context.threadName = WithoutControls(HAL::CurrentThreadName());
    context.threadId = HAL::CurrentThreadId();
    context.threadPriority = HAL::CurrentThreadPriority();
    return context;
}

// Without milliseconds and level, which are put in each time.
void Renew(KeptPrefixT& kept, PrefixKind kind, std::int64_t second)
{
    constexpr std::string_view NO_LEVEL = "    "; // "%3s " without a text
    const LogLineContextT context = ContextOf(second);
    std::string text = PrefixedLine(kind, context, "");
    if (kind == PrefixKind::Full) text.resize(text.size() - NO_LEVEL.size());
    const std::size_t timeEnd = TimeText(context.localTime).size();
    switch (kind) {
    case PrefixKind::Full:
        kept.millisecondAt = static_cast<std::uint32_t>(1 + timeEnd - 3);
        break;
    case PrefixKind::Time:
        kept.millisecondAt = static_cast<std::uint32_t>(timeEnd - 3);
        break;
    default:
        kept.millisecondAt = static_cast<std::uint32_t>(text.size() - UTC_DIGITS_FROM_END);
        break;
    }
    kept.length = static_cast<std::uint32_t>(std::min(text.size(), std::size(kept.text)));
    std::copy_n(text.begin(), kept.length, kept.text);
    kept.second = second;
    kept.threadVersion = HAL::CurrentThreadVersion();
}

void PutLevel(UTI::FormatOutT<char>& out, int level)
{
    static constexpr std::string_view FIELDS[] = {"    ",  "FINEST ", "FINER ", "FINE ",
                                                  "INFO ", "WARN ",   "ERROR ", "FATAL "};
    const bool known = level >= 0 && level < static_cast<int>(std::size(FIELDS));
    const std::string_view field = FIELDS[known ? static_cast<std::size_t>(level) : 0];
    out.Put(field.data(), field.size());
}

} // namespace

void PutPrefix(UTI::FormatOutT<char>& out, PrefixKind kind, int level)
{
    if (kind != PrefixKind::Full && kind != PrefixKind::Time && kind != PrefixKind::UtcTime) return;
    KeptPrefixT& kept = t_kept[static_cast<std::size_t>(kind) - 1];
    const HAL::WallTime now = HAL::WallTimeNow();
    if (kept.second != now.seconds || kept.threadVersion != HAL::CurrentThreadVersion())
        Renew(kept, kind, now.seconds);
    char* const digits = kept.text + kept.millisecondAt;
    digits[0] = static_cast<char>('0' + now.millisecond / 100);
    digits[1] = static_cast<char>('0' + now.millisecond / 10 % 10);
    digits[2] = static_cast<char>('0' + now.millisecond % 10);
    out.Put(kept.text, kept.length);
    if (kind == PrefixKind::Full) PutLevel(out, level);
}

} // namespace BSS::DBG
