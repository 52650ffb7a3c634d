// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A command task that can be held, so that a test can arrange what waits behind the message that is being
// executed.
#pragma once

#include "Bss/Bss_Tsk/BSS_TSK_CommandCore.h"
#include "Bss/Bss_Tsk/BSS_TSK_CommandTask.h"
#include "Bss/Bss_Tsk/BSS_TSK_Event.h"
#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"
#include "Support/Eventually.h"
#include "TaskFixture.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace TaskTests {

/// Counts notifications and keeps their codes.
class CountingObserverC final : public BSS::UTI::ObserverC
{
public:
    ~CountingObserverC() override { detachAll(); }
    void update(BSS::UTI::SubjectC&, std::uint32_t uiCode, const BSS::TSK::SharedObjectPtrT& object) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_codes.push_back(uiCode);
        m_last = object;
    }
    std::vector<std::uint32_t> Codes() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_codes;
    }
    BSS::TSK::SharedObjectPtrT Last() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_last;
    }

private:
    mutable std::mutex m_lock;
    std::vector<std::uint32_t> m_codes;
    BSS::TSK::SharedObjectPtrT m_last;
};

class CommandTaskTest : public TaskTest
{
protected:
    /// Opens the core to the tests.
    class OpenTaskC final : public BSS::TSK::CommandTaskC
    {
    public:
        using CommandTaskC::CommandTaskC;
        using CommandTaskC::getCore;
        using CommandTaskC::setFriendlyKillLimit;
        std::atomic<int> timeouts{0};

    protected:
        void onTimeout() override { ++timeouts; }
    };

    /// Two events, in the hands of a command and of the test.
    struct HoldT
    {
        BSS::TSK::EventC entered;
        BSS::TSK::EventC leave;
    };

    ~CommandTaskTest() override { End(); }

    void Make(std::uint32_t uiMaximum) { task = std::make_unique<OpenTaskC>(Settings("queue"), uiMaximum); }

    /// Occupies the task until Go().
    void Hold()
    {
        hold = std::make_shared<HoldT>();
        EXPECT_EQ(task->postCommand(BSS::TSK::MakeCommand("hold",
                                                          [held = hold] {
                                                              held->entered.set();
                                                              static_cast<void>(held->leave.wait(20000));
                                                          })),
                  BSS::RC_OK);
        EXPECT_EQ(hold->entered.wait(20000), BSS::RC_OK);
    }
    void Go() { hold->leave.set(); }

    /// Goes on, and waits until what was held up has been run and the task is about to wait.
    void DrainAndSleep(const std::string& strExpected)
    {
        const std::uint64_t before = task->getStatistics().getWaitCount();
        Go();
        EXPECT_TRUE(Ordered(strExpected));
        EXPECT_TRUE(Support::Eventually([&] { return task->getStatistics().getWaitCount() > before; }));
    }

    /// Appends its name to `order` when it is executed.
    BSS::TSK::CommandPtrT Named(const std::string& strName)
    {
        return BSS::TSK::MakeCommand("named", [this, strName] {
            const std::lock_guard<std::mutex> guard(orderLock);
            order += strName;
        });
    }
    std::string Order()
    {
        const std::lock_guard<std::mutex> guard(orderLock);
        return order;
    }
    bool Ordered(const std::string& strExpected)
    {
        return Support::Eventually([&] { return Order() == strExpected; });
    }
    bool Idle()
    {
        return Support::Eventually([&] { return task->getMsgCount() == 0 && !task->isInOverflow(); });
    }

    void End()
    {
        if (!task) return;
        if (task->isRunning()) {
            task->stop();
            EXPECT_TRUE(task->waitForStop(20000));
        }
        task.reset();
    }

    std::unique_ptr<OpenTaskC> task;
    std::shared_ptr<HoldT> hold;
    std::mutex orderLock;
    std::string order;
};

} // namespace TaskTests
