// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a component of the running system can do: it is set up, started, stopped, waited for, killed if need
// be, and cleaned up. A container does each for all its components. The order of the operations is fixed.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Uti/BSS_UTI_Node.h"

#include <atomic>
#include <cstdint>

namespace BSS::TSK {

enum class ComponentState : std::uint32_t
{
    Initial = 0,
    Stopped = 1, ///< asked to stop; what it did may still be going on
    Started = 2
};

class SysComponentC : public UTI::NodeC
{
public:
    ~SysComponentC() override;

    /// Sets up what start needs. RC_OK unless a derived class says otherwise.
    [[nodiscard]] virtual ResultCodeT init();

    virtual void start() = 0;

    /// Asks for the end and returns at once.
    virtual void stop() = 0;

    /// Waits that many milliseconds at most, without limit when negative. Whether it has come to its end.
    virtual bool waitForStop(int timeoutMs) = 0;

    virtual void kill() = 0;

    /// Takes init back. Does nothing unless a derived class says otherwise.
    virtual void cleanup();

    /// What a component is called where it is logged.
    virtual const char* getComponentName() const noexcept;

    ComponentState getState() const noexcept { return m_state.load(); }

protected:
    void setState(ComponentState state) noexcept { m_state.store(state); }

private:
    std::atomic<ComponentState> m_state{ComponentState::Initial};
};

} // namespace BSS::TSK
