// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The framework's own configuration values, over a store of the test's own.
#include "Bss/Bss_Os/BSS_OS_Configuration.h"

#include "Bss/Bss_Os/BSS_OS_ConfigStore.h"

#include <gtest/gtest.h>
#include <map>
#include <utility>

using namespace BSS;

namespace {

class MemoryStore final : public OS::ConfigStoreI
{
public:
    ResultCodeT Read(const std::wstring& key, const std::wstring& name, std::uint32_t& value) const override
    {
        const auto found = values.find({key, name});
        if (found == values.end()) return RC_FAILED;
        value = found->second;
        return RC_OK;
    }

    ResultCodeT Write(const std::wstring& key, const std::wstring& name, std::uint32_t value) override
    {
        if (locked) return RC_FAILED;
        values[{key, name}] = value;
        return RC_OK;
    }

    std::map<std::pair<std::wstring, std::wstring>, std::uint32_t> values;
    bool locked = false;
};

TEST(Configuration, AssertionsAreOffWhenTheValueCannotBeRead)
{
    EXPECT_FALSE(OS::ReadAssertEnabled(MemoryStore()));
}

TEST(Configuration, AssertionsAreOnForAnyValueButZero)
{
    MemoryStore store;
    store.values[{L"Configuration", L"ASSERTEnabled"}] = 7;
    EXPECT_TRUE(OS::ReadAssertEnabled(store));
    store.values[{L"Configuration", L"ASSERTEnabled"}] = 0;
    EXPECT_FALSE(OS::ReadAssertEnabled(store));
}

TEST(Configuration, SwitchingAssertionsStoresOneOrZero)
{
    MemoryStore store;
    EXPECT_EQ(OS::WriteAssertEnabled(store, true), RC_OK);
    EXPECT_EQ((store.values[{L"Configuration", L"ASSERTEnabled"}]), 1u);
    EXPECT_EQ(OS::WriteAssertEnabled(store, false), RC_OK);
    EXPECT_EQ((store.values[{L"Configuration", L"ASSERTEnabled"}]), 0u);
}

TEST(Configuration, SwitchingAssertionsFailsWhenTheStoreDoes)
{
    MemoryStore store;
    store.locked = true;
    EXPECT_EQ(OS::WriteAssertEnabled(store, true), 0x0200001Au);
}

TEST(Configuration, LogLimitCountsKiB)
{
    MemoryStore store;
    store.values[{L"Configuration", L"ErrorLogSize"}] = 2;
    EXPECT_EQ(OS::ReadErrorLogLimitBytes(store, 99), 2048u);
}

TEST(Configuration, MissingLogLimitLeavesTheDefault)
{
    EXPECT_EQ(OS::ReadErrorLogLimitBytes(MemoryStore(), 99), 99u);
}

TEST(Configuration, LargestLogLimitDoesNotWrap)
{
    MemoryStore store;
    store.values[{L"Configuration", L"ErrorLogSize"}] = 0xFFFFFFFF;
    EXPECT_EQ(OS::ReadErrorLogLimitBytes(store, 99), 0xFFFFFFFFull << 10);
}

} // namespace
