// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Something that can be observed. Observers are told synchronously, on the notifying thread, in the order in
// which they were attached, with none of the subject's locks held: a notification may attach, detach and
// notify. What is attached meanwhile is told from the next notification on. Safe from any thread. Knows
// neither the codes nor what goes with them.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"
#include "Bss/Bss_Uti/BSS_UTI_SharedObject.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace BSS::UTI {

class ObserverC;
struct ObserverLinkT;

class SubjectC
{
public:
    SubjectC();
    ~SubjectC();
    SubjectC(const SubjectC&) = delete;
    SubjectC& operator=(const SubjectC&) = delete;

    /// An observer that is attached already is not attached twice. Not owned; one that goes is forgotten.
    void attach(ObserverC& observer);

    /// When this returns, this subject's notification is not running in the observer, unless on this thread.
    void detach(ObserverC& observer) noexcept;

    /// What an observer throws is thrown here, and the observers behind it are not told.
    void notify(std::uint32_t code, const RefPtrT<SharedObjectC>& payload = {});

    std::size_t getObserverCount() const;

private:
    using LinksT = std::vector<std::shared_ptr<ObserverLinkT>>;

    mutable TSK::MutexC m_lock;
    LinksT m_links;
};

} // namespace BSS::UTI
