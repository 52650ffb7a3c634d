// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The transitions of the TCP/IP client: every event in every state, by the table alone and by the machine.
#include "TcpIpClientStateMachineFixture.h"

#include <string>
#include <tuple>
#include <vector>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

// The table by itself: what each event does and leads to in each state. An empty answer is "ignored".
struct AnswerT
{
    std::string next;
    ClientAction action = ClientAction::None;

    bool operator==(const AnswerT&) const = default;
};

struct ExpectedT
{
    std::uint32_t state;
    ClientEvent event;
    bool bAutoConnect;
    AnswerT answer;
};

const char* NameOf(std::uint32_t state)
{
    static const char* const names[] = {"IDLE", "SETTING_UP", "ONLINE"};
    return names[state];
}

AnswerT AnswerOf(const ClientTransitionT* row)
{
    return row == nullptr ? AnswerT() : AnswerT{NameOf(row->next), row->action};
}

class ClientTableTest : public testing::TestWithParam<ExpectedT>
{};

TEST_P(ClientTableTest, EventDoesAndLeadsWhereItShould)
{
    const ExpectedT& expected = GetParam();
    const AnswerT answer = AnswerOf(FindTransition(expected.state, expected.event, expected.bAutoConnect));
    EXPECT_EQ(answer.next, expected.answer.next);
    EXPECT_EQ(answer.action, expected.answer.action);
}

std::vector<ExpectedT> WholeTable()
{
    using E = ClientEvent;
    using A = ClientAction;
    std::vector<ExpectedT> all;
    for (const bool bAuto : {false, true}) {
        const AnswerT lost{bAuto ? "SETTING_UP" : "IDLE"};
        for (const auto& [event, idle, settingUp, online] :
             std::vector<std::tuple<E, AnswerT, AnswerT, AnswerT>>{
                 {E::Connect, {"SETTING_UP"}, {"SETTING_UP", A::Attempt}, {}},
                 {E::Disconnect, {}, {"IDLE"}, {"IDLE"}},
                 {E::Close, {}, {"IDLE", A::RememberClose}, {"IDLE", A::RememberClose}},
                 {E::TimerExpired, {}, {"SETTING_UP", A::Attempt}, {}},
                 {E::Established, {}, {"ONLINE"}, {}},
                 {E::Failed, {}, {"SETTING_UP", A::ScheduleRetry}, {}},
                 {E::LinkLost, {}, {}, lost}}) {
            all.push_back({IDLE, event, bAuto, idle});
            all.push_back({SETTING_UP, event, bAuto, settingUp});
            all.push_back({ONLINE, event, bAuto, online});
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, ClientTableTest, testing::ValuesIn(WholeTable()));

TEST(ClientTableSizeTest, EveryStateAndEventIsTried)
{
    EXPECT_EQ(WholeTable().size(), 2 * 3 * ALL_CLIENT_EVENTS.size());
}

// The machine by its table: the pairs that others can bring about; an attempt's own two come from within.
class ClientMachineByTableTest : public TcpIpClientStateMachineFixtureC,
                                 public testing::WithParamInterface<ExpectedT>
{
protected:
    void Tell(ClientEvent event)
    {
        switch (event) {
        case ClientEvent::Connect:
            return Machine().connectTcpIp();
        case ClientEvent::Disconnect:
            return Machine().disconnectTcpIp();
        case ClientEvent::Close:
            return Machine().executeClose();
        case ClientEvent::TimerExpired:
            return Machine().onTimer();
        case ClientEvent::LinkLost:
            return Machine().onLinkLost(RC_FAILED);
        case ClientEvent::Established:
        case ClientEvent::Failed:
            break;
        }
        FAIL() << "not from outside";
    }
};

TEST_P(ClientMachineByTableTest, EventDoesAndLeadsWhereTheTableSays)
{
    const ExpectedT& expected = GetParam();
    client.autoConnect = expected.bAutoConnect ? AutoConnect::WITH_TIMER : AutoConnect::OFF;
    In(expected.state);
    client.bServerThere = false;
    const ResultCodeT before = Machine().getLastResult();
    Tell(expected.event);
    const bool bIgnored = expected.answer.next.empty();
    EXPECT_EQ(NameOf(Machine().getState()), bIgnored ? NameOf(expected.state) : expected.answer.next);
    const bool bEnters = expected.state == IDLE && expected.answer.next == "SETTING_UP";
    EXPECT_EQ(client.nAttempts, bEnters || expected.answer.action == ClientAction::Attempt ? 1 : 0);
    EXPECT_EQ(Machine().getLastResult() == 0x02000008U,
              expected.answer.action == ClientAction::RememberClose);
    if (!bIgnored) return;
    EXPECT_TRUE(client.told.empty());
    EXPECT_FALSE(timer.bRunning);
    EXPECT_EQ(Machine().getLastResult(), before);
}

std::vector<ExpectedT> FromOutside()
{
    std::vector<ExpectedT> all = WholeTable();
    std::erase_if(all, [](const ExpectedT& one) {
        return one.event == ClientEvent::Established || one.event == ClientEvent::Failed;
    });
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, ClientMachineByTableTest, testing::ValuesIn(FromOutside()));

} // namespace
