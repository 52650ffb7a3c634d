// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

#include <atomic>

namespace BSS::ERR {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Err\BSS_ERR_PanicHandlerRegistry)";

// Reports are recognised by source name and line, so this line stays what it is wherever the code moves.
constexpr std::int32_t LINE_HANDLER_LEFT = 57;

constinit std::atomic<bool> s_gone = false;

// Stands around the process's registry: made before it, gone after it.
struct Surroundings
{
    // The log manager, made first, is destroyed last and can take the registry's own last report.
    Surroundings() { static_cast<void>(DBG::DbgLogMgrC::instance()); }
    ~Surroundings() { s_gone.store(true); }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;
};

struct ProcessRegistry
{
    Surroundings surroundings;
    PanicHandlerRegistryC registry;
};

} // namespace

PanicHandlerRegistryC::PanicHandlerRegistryC() = default;

PanicHandlerRegistryC::~PanicHandlerRegistryC()
{
    if (m_pHandler == nullptr) return;
    m_pHandler = nullptr;
    static_cast<void>(AssertFailed("false", 0, 0, BSS_SOURCE_NAME, LINE_HANDLER_LEFT));
}

void PanicHandlerRegistryC::Panic(const char* format, ResultCodeT type, std::uint32_t first,
                                  std::uint32_t second, const char* file, std::int32_t line)
{
    const TSK::GuardC guard(m_lock);
    if (m_pHandler != nullptr) m_pHandler->Panic(format, type, first, second, file, line);
}

bool PanicHandlerRegistryC::Assert(const char* expression, std::uint32_t first, std::uint32_t second,
                                   const char* file, std::int32_t line)
{
    const TSK::GuardC guard(m_lock);
    return m_pHandler == nullptr || m_pHandler->Assert(expression, first, second, file, line);
}

bool PanicHandlerRegistryC::Query(std::uint32_t first, std::uint32_t second)
{
    const TSK::GuardC guard(m_lock);
    return m_pHandler != nullptr && m_pHandler->Query(first, second);
}

void PanicHandlerRegistryC::SetAssertEnabled(bool enabled)
{
    const TSK::GuardC guard(m_lock);
    if (m_pHandler != nullptr) {
        m_pHandler->m_bAssertEnabled = enabled;
        m_pHandler->SetAssertEnabled(enabled);
    }
    m_notifier.Notify(enabled);
}

void PanicHandlerRegistryC::Register(SysPanicHandlerI* handler, bool replace)
{
    const TSK::GuardC guard(m_lock);
    if (m_pHandler != nullptr && !replace) return;
    m_pHandler = handler;
    if (handler == nullptr) return;
    handler->m_bAssertEnabled = m_bAssertEnabled;
    handler->SetAssertEnabled(m_bAssertEnabled);
}

void PanicHandlerRegistryC::Unregister(const SysPanicHandlerI* handler)
{
    const TSK::GuardC guard(m_lock);
    if (m_pHandler == handler) m_pHandler = nullptr;
}

FlagNotifierC& PanicHandlerRegistryC::GetFlagNotifier() noexcept
{
    return m_notifier;
}

PanicHandlerRegistryC& GetPanicHandlerRegistry()
{
    static ProcessRegistry process;
    return process.registry;
}

bool PanicHandlerRegistryIsGone() noexcept
{
    return s_gone.load();
}

} // namespace BSS::ERR
