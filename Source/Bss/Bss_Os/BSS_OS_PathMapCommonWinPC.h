// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The path map of an ordinary computer, on every platform: directories are the user's own, as the platform
// layer finds them. Each is asked for once and remembered.
#pragma once

#include "Bss/Bss_Os/BSS_OS_PathMapI.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace BSS::OS {

class PathMapCommonWinPC final : public PathMapI
{
public:
    PathMapCommonWinPC();
    ~PathMapCommonWinPC() override;
    ResultCodeT GetPath(PathKind kind, UTI::StringC& path) override;
    ResultCodeT SetPath(PathKind kind, const wchar_t* path) override;
    ResultCodeT MakePath(PathKind kind) override;
    ResultCodeT FindEntry(PathKind kind, const wchar_t* name, UTI::StringC& path) override;
    std::uint32_t Version() const noexcept override { return m_nVersion.load(std::memory_order_acquire); }

    /// GetPath for those who want the text alone; empty when there is none.
    std::wstring PathOf(PathKind kind);

private:
    static constexpr std::size_t KINDS = 3;

    TSK::MutexC m_lock;
    std::array<std::wstring, KINDS> m_paths; // empty: not asked for yet
    std::atomic<std::uint32_t> m_nVersion{1};
};

} // namespace BSS::OS
