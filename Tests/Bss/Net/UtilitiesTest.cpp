// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Questions to the network. Echo requests are not permitted everywhere: the answer must say so.
#include "Bss/Bss_Net/BSS_NET_Utilities.h"

#include "Loopback.h"

#include <string>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

class UtilitiesTest : public testing::Test
{
protected:
    const SocketsStartedC started;
    std::int64_t roundTripUs = -1;
};

TEST_F(UtilitiesTest, ServiceThatListensIsThere)
{
    const ListenerC listener;
    EXPECT_EQ(CheckService("127.0.0.1", listener.port(), LONG_MS), RC_OK);
}

TEST_F(UtilitiesTest, ServiceIsFoundByName)
{
    const ListenerC listener;
    EXPECT_EQ(CheckService("localhost", listener.port(), LONG_MS), RC_OK);
}

TEST_F(UtilitiesTest, PortWhereNobodyListensIsRefused)
{
    const DeadPortC dead;
    const ResultCodeT rc = CheckService("127.0.0.1", dead.port(), LONG_MS);
    EXPECT_TRUE(rc == RC_FAILED || rc == RC_CLOSED) << rc;
}

TEST_F(UtilitiesTest, NameThatIsNoNameIsNotFound)
{
    EXPECT_EQ(CheckService("not a name", 1, LONG_MS), RC_NOT_FOUND);
}

TEST_F(UtilitiesTest, AddressOfNoMachineIsNotActive)
{
    EXPECT_EQ(CheckActiveAddress("192.0.2.77"), RC_NOT_FOUND);
}

TEST_F(UtilitiesTest, LoopbackIsActive)
{
    for (const char* const address : LoopbackAddresses())
        EXPECT_EQ(CheckActiveAddress(address), RC_OK) << address;
}

TEST_F(UtilitiesTest, WhatIsNoAddressIsAnInvalidArgument)
{
    EXPECT_EQ(CheckActiveAddress("here"), RC_INVALID_ARGUMENT);
    EXPECT_EQ(PingAddress("here", 1, roundTripUs), RC_INVALID_ARGUMENT);
}

class PingTest : public UtilitiesTest, public testing::WithParamInterface<const char*>
{};

TEST_P(PingTest, LoopbackAnswersUnlessThatIsNotPermitted)
{
    const ResultCodeT rc = PingAddress(GetParam(), LONG_MS, roundTripUs);
    EXPECT_TRUE(rc == RC_OK || rc == RC_SERVICE_FAILED) << rc;
    EXPECT_EQ(rc == RC_OK, roundTripUs >= 0);
}

INSTANTIATE_TEST_SUITE_P(Both, PingTest, testing::ValuesIn(LoopbackAddresses()));

} // namespace
