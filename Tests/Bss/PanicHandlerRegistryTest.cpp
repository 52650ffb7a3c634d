// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The registry: whom it tells, what it answers without a handler, and what it keeps.
#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"

#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace BSS::ERR;

namespace {

class Handler final : public SysPanicHandlerI
{
public:
    void Panic(const char* format, BSS::ResultCodeT type, std::uint32_t, std::uint32_t, const char*,
               std::int32_t) override
    {
        calls.push_back(std::string("Panic ") + format + " " + std::to_string(type));
    }
    bool Query(std::uint32_t first, std::uint32_t second) override
    {
        calls.push_back("Query " + std::to_string(first) + " " + std::to_string(second));
        return true;
    }
    void SetAssertEnabled(bool enabled) override { calls.push_back(enabled ? "on" : "off"); }

    std::vector<std::string> calls;
};

using CallsT = std::vector<std::string>;

TEST(PanicHandlerRegistry, WithoutHandlerAssertIsTrueAndQueryFalse)
{
    PanicHandlerRegistryC registry;
    EXPECT_TRUE(registry.Assert("x", 0, 0, "f", 1));
    EXPECT_FALSE(registry.Query(1, 2));
    registry.Panic("x", 1, 0, 0, "f", 1);
}

TEST(PanicHandlerRegistry, HandlerThatOverridesNothingAnswersTheDefaults)
{
    struct Minimal final : SysPanicHandlerI
    {
        void Panic(const char*, BSS::ResultCodeT, std::uint32_t, std::uint32_t, const char*,
                   std::int32_t) override
        {}
    } minimal;
    PanicHandlerRegistryC registry;
    registry.Register(&minimal, false);
    EXPECT_TRUE(registry.Assert("x", 0, 0, "f", 1));
    EXPECT_FALSE(registry.Query(1, 2));
    registry.SetAssertEnabled(true);
    EXPECT_TRUE(minimal.IsAssertEnabled());
    registry.Unregister(&minimal);
}

TEST(PanicHandlerRegistry, ForwardsToTheRegisteredHandler)
{
    Handler handler;
    PanicHandlerRegistryC registry;
    registry.Register(&handler, false);
    registry.Panic("p", 9, 0, 0, "f", 1);
    EXPECT_TRUE(registry.Query(1, 2));
    registry.Unregister(&handler);
    EXPECT_EQ(handler.calls, (CallsT{"off", "Panic p 9", "Query 1 2"}));
}

TEST(PanicHandlerRegistry, RegistrationTellsTheHandlerTheRegistrysOwnFlag)
{
    Handler handler;
    PanicHandlerRegistryC registry;
    registry.SetAssertEnabled(true);
    registry.Register(&handler, false);
    EXPECT_FALSE(handler.IsAssertEnabled());
    EXPECT_EQ(handler.calls, CallsT{"off"});
    registry.Unregister(&handler);
}

TEST(PanicHandlerRegistry, SwitchIsStoredInTheHandlerAndNotInTheRegistry)
{
    Handler handler;
    PanicHandlerRegistryC registry;
    registry.Register(&handler, false);
    registry.SetAssertEnabled(true);
    EXPECT_TRUE(handler.IsAssertEnabled());
    EXPECT_FALSE(registry.IsAssertEnabled());
    EXPECT_EQ(handler.calls, (CallsT{"off", "on"}));
    registry.Unregister(&handler);
}

TEST(PanicHandlerRegistry, NotifierIsToldAfterTheHandler)
{
    Handler handler;
    PanicHandlerRegistryC registry;
    registry.Register(&handler, false);
    registry.GetFlagNotifier().Subscribe(
        [&](bool flag) { handler.calls.push_back(flag ? "told on" : "told off"); });
    registry.SetAssertEnabled(true);
    registry.SetAssertEnabled(false);
    registry.Unregister(&handler);
    EXPECT_EQ(handler.calls, (CallsT{"off", "on", "told on", "off", "told off"}));
}

TEST(PanicHandlerRegistry, NotifierIsToldWithoutAnyHandler)
{
    int told = 0;
    PanicHandlerRegistryC registry;
    registry.GetFlagNotifier().Subscribe([&](bool) { ++told; });
    registry.SetAssertEnabled(true);
    EXPECT_EQ(told, 1);
}

TEST(PanicHandlerRegistry, RegisterWithoutReplaceKeepsTheOldHandler)
{
    Handler first;
    Handler second;
    PanicHandlerRegistryC registry;
    registry.Register(&first, false);
    registry.Register(&second, false);
    registry.Panic("p", 1, 0, 0, "f", 1);
    EXPECT_EQ(first.calls.size(), 2u);
    EXPECT_TRUE(second.calls.empty());
    registry.Unregister(&first);
}

TEST(PanicHandlerRegistry, RegisterWithReplaceTakesTheNewHandler)
{
    Handler first;
    Handler second;
    PanicHandlerRegistryC registry;
    registry.Register(&first, false);
    registry.Register(&second, true);
    registry.Panic("p", 1, 0, 0, "f", 1);
    EXPECT_EQ(first.calls, CallsT{"off"});
    EXPECT_EQ(second.calls.size(), 2u);
    registry.Unregister(&second);
}

TEST(PanicHandlerRegistry, UnregisterOfAnotherHandlerChangesNothing)
{
    Handler first;
    Handler second;
    PanicHandlerRegistryC registry;
    registry.Register(&first, false);
    registry.Unregister(&second);
    registry.Panic("p", 1, 0, 0, "f", 1);
    EXPECT_EQ(first.calls.size(), 2u);
    registry.Unregister(&first);
    registry.Panic("p", 1, 0, 0, "f", 1);
    EXPECT_EQ(first.calls.size(), 2u);
}

TEST(PanicHandlerRegistry, HandlerLeftAtTheEndIsReportedAtItsFixedLine)
{
    const Support::LogCapture log;
    Handler handler;
    {
        PanicHandlerRegistryC registry;
        registry.Register(&handler, false);
    }
    EXPECT_EQ(log.Messages(),
              "<<ASSERT at ..\\..\\Source\\Bss\\Bss_Err\\BSS_ERR_PanicHandlerRegistry(57): false>>\n");
    EXPECT_EQ(handler.calls, CallsT{"off"});
}

TEST(PanicHandlerRegistry, EndsSilentlyWithoutAHandler)
{
    const Support::LogCapture log;
    {
        PanicHandlerRegistryC registry;
    }
    EXPECT_EQ(log.Messages(), "");
}

TEST(PanicHandlerRegistry, HandlerMayUnregisterItself)
{
    struct Leaving final : SysPanicHandlerI
    {
        explicit Leaving(PanicHandlerRegistryC& owner) : registry(owner) {}
        void Panic(const char*, BSS::ResultCodeT, std::uint32_t, std::uint32_t, const char*,
                   std::int32_t) override
        {
            ++panics;
            registry.Unregister(this);
        }
        PanicHandlerRegistryC& registry;
        int panics = 0;
    };
    PanicHandlerRegistryC registry;
    Leaving handler(registry);
    registry.Register(&handler, false);
    registry.Panic("p", 1, 0, 0, "f", 1);
    registry.Panic("p", 1, 0, 0, "f", 1);
    EXPECT_EQ(handler.panics, 1);
}

TEST(PanicHandlerRegistry, HandlerIsNeverEnteredOnTwoThreadsAtOnce)
{
    struct Counting final : SysPanicHandlerI
    {
        void Panic(const char*, BSS::ResultCodeT, std::uint32_t, std::uint32_t, const char*,
                   std::int32_t) override
        {
            if (inside.fetch_add(1) != 0) overlapped = true;
            std::this_thread::yield();
            --inside;
        }
        std::atomic<int> inside = 0;
        std::atomic<bool> overlapped = false;
    } handler;
    PanicHandlerRegistryC registry;
    registry.Register(&handler, false);
    const auto panicking = [&] {
        for (int i = 0; i < 500; ++i)
            registry.Panic("p", 1, 0, 0, "f", 1);
    };
    std::thread other(panicking);
    panicking();
    other.join();
    registry.Unregister(&handler);
    EXPECT_FALSE(handler.overlapped);
}

TEST(PanicHandlerRegistry, ProcessHasOne)
{
    EXPECT_EQ(&GetPanicHandlerRegistry(), &GetPanicHandlerRegistry());
    EXPECT_FALSE(PanicHandlerRegistryIsGone());
}

TEST(FlagNotifier, UnsubscribedCallbackIsNotToldAnyMore)
{
    FlagNotifierC notifier;
    int told = 0;
    const std::uint32_t id = notifier.Subscribe([&](bool) { ++told; });
    notifier.Notify(true);
    notifier.Unsubscribe(id);
    notifier.Notify(true);
    EXPECT_EQ(told, 1);
}

TEST(FlagNotifier, CallbackMayUnsubscribeItself)
{
    FlagNotifierC notifier;
    int told = 0;
    std::uint32_t id = 0;
    id = notifier.Subscribe([&](bool) {
        ++told;
        notifier.Unsubscribe(id);
    });
    notifier.Notify(true);
    notifier.Notify(false);
    EXPECT_EQ(told, 1);
}

TEST(FlagNotifier, EmptyCallbackAndUnknownNumberAreHarmless)
{
    FlagNotifierC notifier;
    EXPECT_NE(notifier.Subscribe({}), 0u);
    notifier.Unsubscribe(77);
    notifier.Notify(true);
}

} // namespace
