// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Addresses: text in, text out, and names.
#include "Loopback.h"
#include "Support/Eventually.h"

#include <algorithm>

using namespace BSS::HAL;
using namespace NetTests;

namespace {

class HalSocketAddressTest : public testing::Test
{
    const SocketsStartedC m_started;
};

class HalSocketAddressTextTest : public HalSocketAddressTest, public testing::WithParamInterface<const char*>
{};

TEST_P(HalSocketAddressTextTest, TextComesBackAsItWas)
{
    const SocketAddressT address = Address(GetParam(), 4321);
    EXPECT_EQ(AddressText(address), GetParam());
    EXPECT_EQ(PortOf(address), 4321);
}

INSTANTIATE_TEST_SUITE_P(Both, HalSocketAddressTextTest,
                         testing::Values("127.0.0.1", "192.0.2.255", "::1", "2001:db8::7"));

class HalSocketAddressRefusedTest : public HalSocketAddressTest,
                                    public testing::WithParamInterface<std::string>
{};

TEST_P(HalSocketAddressRefusedTest, TextThatIsNoAddressIsRefused)
{
    SocketAddressT address;
    EXPECT_FALSE(ParseAddress(GetParam(), 1, address));
    EXPECT_EQ(KindOf(address), AddressKind::None);
}

INSTANTIATE_TEST_SUITE_P(Several, HalSocketAddressRefusedTest,
                         testing::Values("", "10", "1.2.3", "1.2.3.256", "1.2.3.4.5", "localhost", "::g",
                                         "1:2", std::string("1.2.3.4\0", 8), "0x7f.1", "a.b.c.d"));

TEST_F(HalSocketAddressTest, KindFollowsTheText)
{
    EXPECT_EQ(KindOf(Address("127.0.0.1", 1)), AddressKind::IPv4);
    EXPECT_EQ(KindOf(Address("::1", 1)), AddressKind::IPv6);
}

TEST_F(HalSocketAddressTest, LoopbackIsKnownByItsForm)
{
    EXPECT_TRUE(IsLoopback(Address("127.8.9.1", 1)));
    EXPECT_TRUE(IsLoopback(Address("::1", 1)));
    EXPECT_TRUE(IsLoopback(Address("::ffff:127.0.0.1", 1)));
    EXPECT_FALSE(IsLoopback(Address("192.0.2.1", 1)));
    EXPECT_FALSE(IsLoopback(Address("2001:db8::1", 1)));
    EXPECT_FALSE(IsLoopback(SocketAddressT()));
}

TEST_F(HalSocketAddressTest, NoAddressHasNoTextAndNoPort)
{
    EXPECT_EQ(AddressText(SocketAddressT()), "");
    EXPECT_EQ(PortOf(SocketAddressT()), 0);
}

TEST_F(HalSocketAddressTest, LocalhostIsResolvedToThisMachine)
{
    std::vector<SocketAddressT> addresses;
    ASSERT_EQ(ResolveName("localhost", 77, addresses), 0);
    ASSERT_FALSE(addresses.empty());
    EXPECT_TRUE(IsLoopback(addresses.front()));
    EXPECT_EQ(PortOf(addresses.front()), 77);
}

TEST_F(HalSocketAddressTest, EmptyNameIsNotAsked)
{
    std::vector<SocketAddressT> addresses(3);
    const int error = ResolveName("", 77, addresses);
    EXPECT_NE(error, 0);
    EXPECT_TRUE(addresses.empty());
    EXPECT_TRUE(ResolveErrorText(error).starts_with(std::to_string(error) + ": "));
}

TEST_F(HalSocketAddressTest, NameThatIsNoNameIsRefusedWithTheSystemsWords)
{
    std::vector<SocketAddressT> addresses;
    const int error = ResolveName("not a name", 77, addresses);
    EXPECT_NE(error, 0);
    EXPECT_GT(ResolveErrorText(error).size(), std::string("-1: ").size());
}

TEST_F(HalSocketAddressTest, ActiveAddressesCanBeBound)
{
    std::vector<SocketAddressT> addresses;
    ASSERT_EQ(ActiveAddresses(addresses), 0);
    for (const SocketAddressT& address : addresses) {
        const HeldSocketC socket = Open(KindOf(address));
        // A new one is not to be had until the system has asked its neighbours whether they have it.
        EXPECT_TRUE(Support::Eventually([&] { return BindSocket(socket, address) == 0; }))
            << AddressText(address);
    }
}

} // namespace
