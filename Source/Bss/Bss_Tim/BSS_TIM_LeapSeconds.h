// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How far GPS time is ahead of UTC, as told by several sources at once. The one that counts is the first that
// has told anything, in the order of the enumeration; the last one always has. Safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"

#include <array>
#include <cstdint>
#include <optional>

namespace BSS::TIM {

enum class LeapSource : std::uint8_t
{
    Forced, ///< an operator's word
    Glonass,
    Galileo,
    Beidou,
    Sbas,
    Qzss,
    Site,   ///< what the site has been set up with
    Default ///< what was true when this was built
};

inline constexpr std::size_t LEAP_SOURCE_COUNT = 8;

/// Since the beginning of 2017.
inline constexpr int DEFAULT_LEAP_SECONDS = 18;

class LeapSecondsC
{
public:
    /// No source may tell less than nothing or more than this.
    static constexpr int MAX_LEAP_SECONDS = 99;

    /// RC_OK; RC_VALUE_REJECTED for a value out of range, and for one of a satellite system that differs by
    /// more than one from what counts: leap seconds come singly.
    ResultCodeT set(LeapSource source, int seconds);

    /// The source has told nothing any more. RC_INVALID_ARGUMENT for the default.
    ResultCodeT clear(LeapSource source);

    int get() const;
    LeapSource getSource() const;

    /// Notified, without a payload, when the value that counts has changed; the code is the value.
    UTI::SubjectC& getSubject() noexcept { return m_subject; }

private:
    std::size_t Counting() const noexcept;
    void Apply(std::size_t source, std::optional<int> seconds);

    mutable TSK::MutexC m_lock;
    std::array<std::optional<int>, LEAP_SOURCE_COUNT> m_seconds = {
        {{}, {}, {}, {}, {}, {}, {}, DEFAULT_LEAP_SECONDS}};
    UTI::SubjectC m_subject;
};

} // namespace BSS::TIM
