// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Tim/BSS_TIM_LeapSeconds.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <cstdlib>

namespace BSS::TIM {

ResultCodeT LeapSecondsC::set(LeapSource source, int seconds)
{
    if (seconds < 0 || seconds > MAX_LEAP_SECONDS) return RC_VALUE_REJECTED;
    const bool told =
        source != LeapSource::Forced && source != LeapSource::Site && source != LeapSource::Default;
    if (told && std::abs(seconds - get()) > 1) return RC_VALUE_REJECTED;
    Apply(static_cast<std::size_t>(source), seconds);
    return RC_OK;
}

ResultCodeT LeapSecondsC::clear(LeapSource source)
{
    if (source == LeapSource::Default) return RC_INVALID_ARGUMENT;
    Apply(static_cast<std::size_t>(source), {});
    return RC_OK;
}

int LeapSecondsC::get() const
{
    const TSK::GuardC guard(m_lock);
    return *m_seconds[Counting()];
}

LeapSource LeapSecondsC::getSource() const
{
    const TSK::GuardC guard(m_lock);
    return static_cast<LeapSource>(Counting());
}

std::size_t LeapSecondsC::Counting() const noexcept
{
    std::size_t source = 0;
    while (!m_seconds[source])
        ++source; // the default ends it
    return source;
}

void LeapSecondsC::Apply(std::size_t source, std::optional<int> seconds)
{
    int before = 0;
    int after = 0;
    {
        const TSK::GuardC guard(m_lock);
        before = *m_seconds[Counting()];
        m_seconds[source] = seconds;
        after = *m_seconds[Counting()];
    }
    if (before != after) m_subject.notify(static_cast<std::uint32_t>(after));
}

} // namespace BSS::TIM
