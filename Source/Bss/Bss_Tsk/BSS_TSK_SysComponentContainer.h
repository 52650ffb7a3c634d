// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Components in an order, and a component itself. What is built up (init, start) goes from the first to the
// last, what is taken down (stop, waitForStop, kill, cleanup) from the last to the first, so that each can
// rely on those before it. The components are not owned; one that goes takes itself out. Belongs to one
// thread.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_SysComponent.h"
#include "Bss/Bss_Uti/BSS_UTI_List.h"

#include <string>

namespace BSS::TSK {

class SysComponentContainerC : public SysComponentC
{
public:
    explicit SysComponentContainerC(std::string name = {});
    ~SysComponentContainerC() override;

    /// At the end. A component stands in one container at a time; a panic tells otherwise.
    void add(SysComponentC& component);
    void remove(SysComponentC& component) noexcept;

    /// The first result that is not RC_OK; what was set up before it is cleaned up again.
    [[nodiscard]] ResultCodeT init() override;

    /// If one throws, those before it are stopped and waited for, and the exception goes on.
    void start() override;
    void stop() override;

    /// The limit is for all of them together. True when all have come to their end.
    bool waitForStop(int timeoutMs) override;
    void kill() override;
    void cleanup() override;
    const char* getComponentName() const noexcept override;

private:
    const std::string m_name;
    UTI::ListC m_components;
};

} // namespace BSS::TSK
