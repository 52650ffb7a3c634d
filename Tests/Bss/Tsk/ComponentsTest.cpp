// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Lists, components in their container, subjects and observers.
#include "Bss/Bss_Tsk/BSS_TSK_SysComponentContainer.h"
#include "Bss/Bss_Uti/BSS_UTI_List.h"
#include "Bss/Bss_Uti/BSS_UTI_Node.h"
#include "Bss/Bss_Uti/BSS_UTI_Observer.h"
#include "Bss/Bss_Uti/BSS_UTI_Subject.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

using namespace BSS::UTI;
using namespace BSS::TSK;

namespace {

struct TestNodeC final : NodeC
{};

TEST(List, KeepsNodesInOrderAndKnowsTheirNeighbours)
{
    TestNodeC a;
    TestNodeC b;
    TestNodeC c;
    ListC list;
    list.append(a);
    list.append(b);
    list.append(c);
    EXPECT_EQ(list.getFirst(), &a);
    EXPECT_EQ(a.getNext(), &b);
    EXPECT_EQ(c.getPrevious(), &b);
    EXPECT_EQ(list.getLast(), &c);
    list.remove(b);
    EXPECT_EQ(a.getNext(), &c);
    EXPECT_EQ(list.getCount(), 2u);
    EXPECT_FALSE(b.isInList());
}

TEST(List, ANodeInTwoListsIsAPanicAndStaysInTheFirst)
{
    const Support::LogCapture systemLog;
    const Support::ReportCapture reports;
    TestNodeC node;
    ListC first;
    ListC second;
    first.append(node);
    second.append(node);
    ASSERT_EQ(reports.Reports().size(), 1u);
    EXPECT_EQ(reports.Reports()[0].kind, Support::ReportT::Kind::Panic);
    EXPECT_EQ(reports.Reports()[0].text, "W: ~ListC(this = 0x%lx, newnode = 0x%lx): node in two lists?\r\n");
    EXPECT_EQ(second.getCount(), 0u);
    second.remove(node);
    EXPECT_TRUE(node.isInList());
}

TEST(List, ANodeThatGoesLeavesItsListAndAListThatGoesLeavesItsNodes)
{
    TestNodeC stays;
    {
        ListC list;
        list.append(stays);
        {
            TestNodeC goes;
            list.append(goes);
        }
        EXPECT_EQ(list.getCount(), 1u);
    }
    EXPECT_FALSE(stays.isInList());
    EXPECT_EQ(stays.getNext(), nullptr);
}

// Writes down what is done to it.
class ComponentC final : public SysComponentC
{
public:
    ComponentC(std::string& record, std::string letter) : m_record(record), m_letter(std::move(letter)) {}
    BSS::ResultCodeT init() override
    {
        m_record += "i" + m_letter;
        return initResult;
    }
    void start() override
    {
        m_record += "s" + m_letter;
        if (throwsAtStart) throw std::runtime_error("no");
    }
    void stop() override { m_record += "x" + m_letter; }
    bool waitForStop(int) override
    {
        m_record += "w" + m_letter;
        return stops;
    }
    void kill() override { m_record += "k" + m_letter; }
    void cleanup() override { m_record += "c" + m_letter; }

    BSS::ResultCodeT initResult = BSS::RC_OK;
    bool throwsAtStart = false;
    bool stops = true;

private:
    std::string& m_record;
    const std::string m_letter;
};

class ContainerTest : public testing::Test
{
protected:
    ContainerTest()
    {
        container.add(a);
        container.add(b);
        container.add(c);
    }
    std::string record;
    ComponentC a{record, "a"};
    ComponentC b{record, "b"};
    ComponentC c{record, "c"};
    SysComponentContainerC container{"all"};
};

TEST_F(ContainerTest, BuildsUpInOrderAndTakesDownInTheOther)
{
    EXPECT_EQ(container.init(), BSS::RC_OK);
    container.start();
    EXPECT_EQ(container.getState(), ComponentState::Started);
    container.stop();
    EXPECT_TRUE(container.waitForStop(100));
    container.kill();
    container.cleanup();
    EXPECT_EQ(record, "iaibicsasbscxcxbxawcwbwakckbkacccbca");
    EXPECT_EQ(container.getState(), ComponentState::Stopped);
    EXPECT_STREQ(container.getComponentName(), "all");
}

TEST_F(ContainerTest, AFailedInitCleansUpWhatWasSetUp)
{
    c.initResult = BSS::RC_NOT_FOUND;
    EXPECT_EQ(container.init(), BSS::RC_NOT_FOUND);
    EXPECT_EQ(record, "iaibiccbca");
}

TEST_F(ContainerTest, AStartThatThrowsStopsWhatWasStarted)
{
    c.throwsAtStart = true;
    EXPECT_THROW(container.start(), std::runtime_error);
    EXPECT_EQ(record, "sasbscxbxawbwa");
    EXPECT_NE(container.getState(), ComponentState::Started);
}

TEST_F(ContainerTest, OneThatDoesNotStopIsToldAndTheOthersAreWaitedForAllTheSame)
{
    b.stops = false;
    EXPECT_FALSE(container.waitForStop(0));
    EXPECT_EQ(record, "wcwbwa");
}

TEST_F(ContainerTest, IsAComponentItself)
{
    SysComponentContainerC outer;
    outer.add(container);
    container.remove(c);
    outer.start();
    EXPECT_EQ(record, "sasb");
}

class ObservingC final : public ObserverC
{
public:
    explicit ObservingC(std::function<void(std::uint32_t)> told) : m_told(std::move(told)) {}
    ~ObservingC() override { detachAll(); }
    void update(SubjectC&, std::uint32_t code, const RefPtrT<SharedObjectC>&) override { m_told(code); }

private:
    std::function<void(std::uint32_t)> m_told;
};

TEST(Subject, TellsItsObserversInOrderOnTheNotifyingThread)
{
    std::string order;
    const auto thread = std::this_thread::get_id();
    ObservingC one([&](std::uint32_t code) {
        EXPECT_EQ(std::this_thread::get_id(), thread);
        order += "1:" + std::to_string(code) + " ";
    });
    ObservingC two([&](std::uint32_t code) { order += "2:" + std::to_string(code) + " "; });
    SubjectC subject;
    subject.attach(one);
    subject.attach(two);
    subject.attach(one);
    subject.notify(5);
    subject.detach(one);
    subject.notify(6);
    EXPECT_EQ(order, "1:5 2:5 2:6 ");
}

TEST(Subject, HandsOnThePayload)
{
    struct PayloadC final : SharedObjectC
    {};
    struct KeeperC final : ObserverC
    {
        ~KeeperC() override { detachAll(); }
        void update(SubjectC&, std::uint32_t, const RefPtrT<SharedObjectC>& payload) override
        {
            kept = payload;
        }
        RefPtrT<SharedObjectC> kept;
    } keeper;
    SubjectC subject;
    subject.attach(keeper);
    const auto payload = MakeShared<PayloadC>();
    subject.notify(1, payload);
    EXPECT_EQ(keeper.kept.get(), payload.get());
}

TEST(Subject, AnObserverMayDetachAttachAndEndItselfWhileItIsTold)
{
    SubjectC subject;
    int later = 0;
    ObservingC third([&](std::uint32_t) { ++later; });
    std::unique_ptr<ObservingC> second;
    int secondCalls = 0;
    second = std::make_unique<ObservingC>([&](std::uint32_t) {
        ++secondCalls;
        subject.attach(third);
        second.reset();
    });
    subject.attach(*second);
    subject.notify(1);
    EXPECT_EQ(later, 0) << "told from the next notification on";
    subject.notify(2);
    EXPECT_EQ(secondCalls, 1);
    EXPECT_EQ(later, 1);
    EXPECT_EQ(subject.getObserverCount(), 1u);
}

TEST(Subject, OneThatIsDetachedByAnotherDuringANotificationIsNotToldAnyMore)
{
    SubjectC subject;
    int calls = 0;
    ObservingC second([&](std::uint32_t) { ++calls; });
    ObservingC first([&](std::uint32_t) { subject.detach(second); });
    subject.attach(first);
    subject.attach(second);
    subject.notify(1);
    EXPECT_EQ(calls, 0);
}

TEST(Subject, AnObserverThatGoesOnAnotherThreadIsWaitedFor)
{
    SubjectC subject;
    std::atomic<bool> inside{false};
    std::atomic<bool> leave{false};
    std::atomic<bool> gone{false};
    auto observer = std::make_unique<ObservingC>([&](std::uint32_t) {
        inside = true;
        EXPECT_TRUE(Support::Eventually([&] { return leave.load(); }));
        EXPECT_FALSE(gone.load());
    });
    subject.attach(*observer);
    std::thread notifying([&] { subject.notify(1); });
    EXPECT_TRUE(Support::Eventually([&] { return inside.load(); }));
    std::thread ending([&] {
        observer.reset();
        gone = true;
    });
    leave = true;
    notifying.join();
    ending.join();
    subject.notify(2);
}

} // namespace
