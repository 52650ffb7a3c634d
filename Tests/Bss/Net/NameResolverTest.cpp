// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Names, asked for in the background.
#include "Bss/Bss_Net/BSS_NET_NameResolver.h"

#include "Bss/Bss_Hal/BSS_HAL_Fault.h"
#include "Loopback.h"
#include "Support/Eventually.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>

using namespace BSS;
using namespace BSS::NET;

namespace {

/// A system that answers when it is let.
struct SlowSystemT
{
    std::mutex lock;
    std::condition_variable let;
    bool bLet = false;
    std::atomic<int> nAsked{0};
    std::atomic<int> nAnswered{0};

    int Answer(std::vector<HAL::SocketAddressT>& addresses)
    {
        ++nAsked;
        std::unique_lock<std::mutex> guard(lock);
        let.wait(guard, [this] { return bLet; });
        addresses.resize(1);
        ++nAnswered;
        return 0;
    }
    void Let()
    {
        const std::lock_guard<std::mutex> guard(lock);
        bLet = true;
        let.notify_all();
    }
};

class NameResolverTest : public testing::Test
{
protected:
    ResolveT Ask()
    {
        return [system = system](const std::string&, std::uint16_t, std::vector<HAL::SocketAddressT>& found) {
            return system->Answer(found);
        };
    }

    const NetTests::SocketsStartedC started;
    const std::shared_ptr<SlowSystemT> system = std::make_shared<SlowSystemT>();
    std::vector<HAL::SocketAddressT> addresses;
};

TEST_F(NameResolverTest, AnswerIsTheSystems)
{
    NameResolverC resolver;
    EXPECT_EQ(resolver.resolve(
                  "localhost", 5, [] { return false; }, addresses),
              0);
    ASSERT_FALSE(addresses.empty());
    EXPECT_TRUE(HAL::IsLoopback(addresses.front()));
}

TEST_F(NameResolverTest, ErrorIsTheSystems)
{
    NameResolverC resolver([](const std::string&, std::uint16_t, auto&) { return 42; });
    EXPECT_EQ(resolver.resolve(
                  "x", 5, [] { return false; }, addresses),
              42);
}

TEST_F(NameResolverTest, CancelledQuestionDoesNotWaitForTheSystem)
{
    NameResolverC resolver(Ask());
    EXPECT_EQ(resolver.resolve(
                  "x", 5, [] { return true; }, addresses),
              NameResolverI::CANCELLED);
    EXPECT_EQ(system->nAnswered, 0);
    system->Let();
    EXPECT_TRUE(Support::Eventually([this] { return system->nAnswered == 1; }));
}

TEST_F(NameResolverTest, SecondQuestionIsNotAskedBeforeTheFirstIsAnswered)
{
    NameResolverC resolver(Ask());
    resolver.resolve(
        "x", 5, [] { return true; }, addresses);
    EXPECT_EQ(resolver.resolve(
                  "y", 5, [] { return true; }, addresses),
              NameResolverI::CANCELLED);
    ASSERT_TRUE(Support::Eventually([this] { return system->nAsked == 1; }));
    system->Let();
    EXPECT_EQ(resolver.resolve(
                  "y", 5, [] { return false; }, addresses),
              0);
    EXPECT_EQ(system->nAsked, 2);
}

TEST_F(NameResolverTest, NoMoreThanSoManyQuestionsAreUnderWay)
{
    const auto cancel = [] { return true; };
    for (std::size_t n = 0; n < NameResolverC::MAX_QUESTIONS; ++n)
        NameResolverC(Ask()).resolve("x", 5, cancel, addresses);
    const auto all = static_cast<int>(NameResolverC::MAX_QUESTIONS);
    ASSERT_TRUE(Support::Eventually([&] { return system->nAsked == all; }));
    NameResolverC further(Ask());
    EXPECT_EQ(further.resolve("y", 5, cancel, addresses), NameResolverI::CANCELLED);
    EXPECT_EQ(system->nAsked, all);
    system->Let();
    EXPECT_EQ(further.resolve(
                  "y", 5, [] { return false; }, addresses),
              0);
    EXPECT_EQ(system->nAsked, all + 1);
}

TEST_F(NameResolverTest, QuestionThatThrowsIsAnError)
{
    NameResolverC resolver([](const std::string&, std::uint16_t, auto&) -> int { throw std::bad_alloc(); });
    EXPECT_EQ(resolver.resolve(
                  "x", 5, [] { return false; }, addresses),
              HAL::ResolveResourcesError());
    EXPECT_GT(HAL::ResolveErrorText(HAL::ResolveResourcesError()).size(), std::string("-10: ").size());
}

TEST_F(NameResolverTest, ResolverMayGoWhileTheSystemIsAsked)
{
    {
        NameResolverC resolver(Ask());
        resolver.resolve(
            "x", 5, [] { return true; }, addresses);
    }
    system->Let();
    EXPECT_TRUE(Support::Eventually([this] { return system->nAnswered == 1; }));
}

TEST_F(NameResolverTest, QuestionWithoutAThreadIsAnsweredWithAnErrorAndTheNextOneIsAsked)
{
    NameResolverC resolver([](const std::string&, std::uint16_t, auto&) { return 0; });
    const auto never = [] { return false; };
    HAL::OrderFault(HAL::FaultT::Thread, 1);
    EXPECT_EQ(resolver.resolve("x", 5, never, addresses), HAL::ResolveResourcesError());
    EXPECT_EQ(resolver.resolve("x", 5, never, addresses), 0);
}

TEST_F(NameResolverTest, WhateverAQuestionThrowsIsAnError)
{
    NameResolverC resolver([](const std::string&, std::uint16_t, auto&) -> int { throw 42; });
    EXPECT_EQ(resolver.resolve(
                  "x", 5, [] { return false; }, addresses),
              HAL::ResolveResourcesError());
}

} // namespace
