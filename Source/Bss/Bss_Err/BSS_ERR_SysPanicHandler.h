// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What an application implements to be told of assertions and panics. Registered with PanicHandlerRegistryC,
// which never enters one handler on two threads at once; a handler that reports is entered again on its own
// thread. The order of the operations is fixed.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <cstdint>

namespace BSS::ERR {

class SysPanicHandlerI
{
public:
    virtual ~SysPanicHandlerI();

    /// A grave inconsistency. `format` may hold integer conversions for `first` and `second`; `type` is
    /// PANIC_TYPE.
    virtual void Panic(const char* format, ResultCodeT type, std::uint32_t first, std::uint32_t second,
                       const char* file, std::int32_t line) = 0;

    /// A broken precondition. The answer is handed to whoever reported it. True unless overridden.
    virtual bool Assert(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                        std::int32_t line);

    /// False unless overridden.
    virtual bool Query(std::uint32_t first, std::uint32_t second);

    /// Told at registration and whenever the application switches assertions; does nothing unless overridden.
    virtual void SetAssertEnabled(bool enabled);

    /// The flag that the registry keeps here, false at first.
    bool IsAssertEnabled() const noexcept { return m_bAssertEnabled; }

protected:
    SysPanicHandlerI() = default;
    SysPanicHandlerI(const SysPanicHandlerI&) = default;
    SysPanicHandlerI& operator=(const SysPanicHandlerI&) = default;

private:
    friend class PanicHandlerRegistryC;
    bool m_bAssertEnabled = false;
};

} // namespace BSS::ERR
