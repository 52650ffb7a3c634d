// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Who is told by a SubjectC. A derived class says detachAll() first thing in its destructor: when that
// returns, no notification is running in the object any more and none will, unless it is the notification
// itself that destroys it. Safe from any thread.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"

#include <cstdint>
#include <memory>

namespace BSS::UTI {

class SubjectC;
struct ObserverLinkT;

class ObserverC
{
public:
    virtual ~ObserverC();

    /// One notification: the subject's code for what happened, and what goes with it, which may be nothing.
    /// Runs on the notifying thread, one at a time for each observer. It may attach and detach and end this
    /// observer.
    virtual void update(SubjectC& subject, std::uint32_t code, const RefPtrT<SharedObjectC>& payload) = 0;

    /// Is told nothing by any subject from now on.
    void detachAll() noexcept;

protected:
    ObserverC();
    ObserverC(const ObserverC&) = delete;
    ObserverC& operator=(const ObserverC&) = delete;

private:
    friend class SubjectC;

    const std::shared_ptr<ObserverLinkT> m_link;
};

} // namespace BSS::UTI
