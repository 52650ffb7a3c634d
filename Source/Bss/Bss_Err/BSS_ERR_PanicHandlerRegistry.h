// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The process-wide dispatcher of reports: hands each to the one handler that the application has registered.
// Every operation holds the registry's lock from begin to end, so handlers are never entered on two threads
// at once; the lock is recursive, so a handler may report and register. What a handler throws passes through.
// Knows nothing of logging.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_FlagNotifier.h"
#include "Bss/Bss_Err/BSS_ERR_SysPanicHandler.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

namespace BSS::ERR {

class PanicHandlerRegistryC final : public SysPanicHandlerI
{
public:
    PanicHandlerRegistryC();

    /// A handler that is still registered is forgotten and reported by the assertion "false".
    ~PanicHandlerRegistryC() override;

    PanicHandlerRegistryC(const PanicHandlerRegistryC&) = delete;
    PanicHandlerRegistryC& operator=(const PanicHandlerRegistryC&) = delete;

    /// Forwarded to the handler; without one nothing happens.
    void Panic(const char* format, ResultCodeT type, std::uint32_t first, std::uint32_t second,
               const char* file, std::int32_t line) override;

    /// The handler's answer; true without one.
    bool Assert(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                std::int32_t line) override;

    /// The handler's answer; false without one.
    bool Query(std::uint32_t first, std::uint32_t second) override;

    /// Stores the flag in the handler, tells the handler and then the notifier. The registry's own flag,
    /// which every handler is given when it is registered, keeps its value.
    void SetAssertEnabled(bool enabled) override;

    /// Registers a handler and tells it the registry's flag. Nothing changes when there is one already and
    /// `replace` is false. Not owned: it must be unregistered before it is destroyed.
    void Register(SysPanicHandlerI* handler, bool replace);

    /// Forgets the handler if it is the registered one.
    void Unregister(const SysPanicHandlerI* handler);

    /// Receives every flag that SetAssertEnabled is given.
    FlagNotifierC& GetFlagNotifier() noexcept;

private:
    SysPanicHandlerI* m_pHandler = nullptr;
    TSK::MutexC m_lock;
    FlagNotifierC m_notifier;
};

/// The one registry of the process, made on first use. Must not be called once PanicHandlerRegistryIsGone().
PanicHandlerRegistryC& GetPanicHandlerRegistry();

/// True once the process, or the library, has come to its end and the registry has been destroyed.
bool PanicHandlerRegistryIsGone() noexcept;

} // namespace BSS::ERR
