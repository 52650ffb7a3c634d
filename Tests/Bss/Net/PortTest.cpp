// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The port between a link and its users.
#include "Bss/Bss_Bio/BSS_BIO_InBetweenPortBase.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::BIO;

namespace {

class PortC final : public InBetweenPortBaseC
{
public:
    ResultCodeT write(const void*, std::size_t, std::size_t&) override { return RC_CLOSED; }
    ResultCodeT discardRd() override { return RC_OK; }
    ResultCodeT discardWr() override { return RC_OK; }
    using InBetweenPortBaseC::forwardData;
    using InBetweenPortBaseC::forwardEvent;
};

class UserC final : public PortReaderI, public PortWriterI
{
public:
    explicit UserC(std::vector<std::string>& told) : m_told(told) {}
    void onPortEvent(PortEvent event, PortReason reason) override
    {
        m_told.push_back(std::to_string(event) + "/" + std::to_string(static_cast<int>(reason)));
    }
    void onData(const std::uint8_t* bytes, std::size_t count) override
    {
        m_told.emplace_back(reinterpret_cast<const char*>(bytes), count);
        if (pDetachFrom != nullptr) {
            EXPECT_EQ(pDetachFrom->detachReader(*this), RC_OK);
        }
    }
    PortC* pDetachFrom = nullptr;

private:
    std::vector<std::string>& m_told;
};

class PortTest : public testing::Test
{
protected:
    static const std::uint8_t* Bytes(const char* text) { return reinterpret_cast<const std::uint8_t*>(text); }

    PortC port;
    std::vector<std::string> told;
    UserC user{told};
    UserC other{told};
};

TEST_F(PortTest, HasAtMostOneReader)
{
    EXPECT_EQ(port.attachReader(user), RC_OK);
    EXPECT_EQ(port.attachReader(other), RC_FAILED);
    EXPECT_EQ(port.detachReader(user), RC_OK);
    EXPECT_EQ(port.attachReader(other), RC_OK);
}

TEST_F(PortTest, HasAtMostOneWriter)
{
    EXPECT_EQ(port.attachWriter(user), RC_OK);
    EXPECT_EQ(port.attachWriter(other), RC_FAILED);
    EXPECT_EQ(port.detachWriter(user), RC_OK);
    EXPECT_FALSE(port.hasWriter());
}

TEST_F(PortTest, DetachingSomebodyElseChangesNothing)
{
    ASSERT_EQ(port.attachReader(user), RC_OK);
    EXPECT_EQ(port.detachReader(other), RC_NOT_FOUND);
    EXPECT_TRUE(port.hasReader());
}

TEST_F(PortTest, EventsGoToTheReaderAndThenToTheWriter)
{
    ASSERT_EQ(port.attachReader(user), RC_OK);
    ASSERT_EQ(port.attachWriter(other), RC_OK);
    port.forwardEvent(OFFLINE, PortReason::RECEIVE_TIMEOUT);
    EXPECT_EQ(told, (std::vector<std::string>{"1/4", "1/4"}));
}

TEST_F(PortTest, DataGoToTheReaderAlone)
{
    ASSERT_EQ(port.attachReader(user), RC_OK);
    ASSERT_EQ(port.attachWriter(other), RC_OK);
    EXPECT_EQ(port.forwardData(Bytes("abc"), 3), RC_OK);
    EXPECT_EQ(told, (std::vector<std::string>{"abc"}));
}

TEST_F(PortTest, DataWithoutAReaderAreToldAsMissingIt)
{
    EXPECT_EQ(port.forwardData(Bytes("abc"), 3), RC_OBJECT_MISSING);
}

TEST_F(PortTest, ReaderMayDetachItselfFromItsCallback)
{
    ASSERT_EQ(port.attachReader(user), RC_OK);
    user.pDetachFrom = &port;
    EXPECT_EQ(port.forwardData(Bytes("a"), 1), RC_OK);
    EXPECT_EQ(port.forwardData(Bytes("b"), 1), RC_OBJECT_MISSING);
}

} // namespace
