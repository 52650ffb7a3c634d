// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Local time of a zone: one that the configuration store defines, or the system's own. Times are milliseconds
// since the beginning of 1970, in UTC or as the local clock shows them. They are exact for the years 1970 to
// 9999; before and after, a zone of the store has standard time and the system's has the offset of the
// nearest of these years. Safe from any thread.
#pragma once

#include "Bss/Bss_Tim/BSS_TIM_TimeZoneRecord.h"

#include <cstdint>
#include <optional>

namespace BSS::TIM {

/// What a local time stands for.
enum class LocalTimeKind
{
    Unique,
    Twice,  ///< the clock was put back over it; the first of both counts
    Skipped ///< the clock was put forward over it; as if it had not been
};

class TimeZoneC
{
public:
    /// The system's.
    TimeZoneC() = default;

    /// A zone of its own rules, which check() must have accepted.
    explicit TimeZoneC(const TimeZoneRecordT& record) : m_record(record) {}

    bool isSystems() const noexcept { return !m_record; }

    /// How far local time is ahead of UTC at that moment.
    std::int64_t offsetMsAt(std::int64_t utcMs) const noexcept;
    std::int64_t localOfUtc(std::int64_t utcMs) const noexcept;
    std::int64_t utcOfLocal(std::int64_t localMs, LocalTimeKind* pKind = nullptr) const noexcept;

private:
    std::optional<TimeZoneRecordT> m_record;
};

/// The zone whose definition is called "Local". RC_OK; otherwise what ReadTimeZone says, and `zone` is the
/// system's.
ResultCodeT ReadLocalZone(const OS::ConfigStoreI& store, TimeZoneC& zone);

} // namespace BSS::TIM
