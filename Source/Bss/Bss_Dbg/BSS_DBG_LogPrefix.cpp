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
    std::uint32_t levelAt;
    int level;
    int millisecond;
    char text[356]; // the longest name of a thread is 63 bytes, each of which may be written as four
};

constinit thread_local std::array<KeptPrefixT, 3> t_kept = {};

constexpr std::size_t LONGEST_LEVEL = sizeof "FINEST ";
constexpr int NO_LEVEL_YET = -1;
constexpr int NO_MILLISECOND_YET = -1;
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

// Milliseconds are put in each time, the level when it is another than the last time.
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
    kept.length = static_cast<std::uint32_t>(std::min(text.size(), std::size(kept.text) - LONGEST_LEVEL));
    std::copy_n(text.begin(), kept.length, kept.text);
    kept.levelAt = kept.length;
    kept.level = NO_LEVEL_YET;
    kept.millisecond = NO_MILLISECOND_YET;
    kept.second = second;
    kept.threadVersion = HAL::CurrentThreadVersion();
}

void PutMillisecond(KeptPrefixT& kept, int millisecond)
{
    char* const digits = kept.text + kept.millisecondAt;
    digits[0] = static_cast<char>('0' + millisecond / 100);
    digits[1] = static_cast<char>('0' + millisecond / 10 % 10);
    digits[2] = static_cast<char>('0' + millisecond % 10);
    kept.millisecond = millisecond;
}

void PutLevel(KeptPrefixT& kept, int level)
{
    static constexpr std::string_view FIELDS[] = {"    ",  "FINEST ", "FINER ", "FINE ",
                                                  "INFO ", "WARN ",   "ERROR ", "FATAL "};
    const bool known = level >= 0 && level < static_cast<int>(std::size(FIELDS));
    const std::string_view field = FIELDS[known ? static_cast<std::size_t>(level) : 0];
    std::copy(field.begin(), field.end(), kept.text + kept.levelAt);
    kept.length = kept.levelAt + static_cast<std::uint32_t>(field.size());
    kept.level = level;
}

} // namespace

void PutPrefix(UTI::FormatOutT<char>& out, PrefixKind kind, int level, const HAL::WallTime& now)
{
    if (kind != PrefixKind::Full && kind != PrefixKind::Time && kind != PrefixKind::UtcTime) return;
    KeptPrefixT& kept = t_kept[static_cast<std::size_t>(kind) - 1];
    if (kept.second != now.seconds || kept.threadVersion != HAL::CurrentThreadVersion())
        Renew(kept, kind, now.seconds);
    if (kept.millisecond != now.millisecond) PutMillisecond(kept, now.millisecond);
    if (kind == PrefixKind::Full && (kept.level != level || level < 0)) PutLevel(kept, level);
    out.Put(kept.text, kept.length);
}

} // namespace BSS::DBG
