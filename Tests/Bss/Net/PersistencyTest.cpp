// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Named values in binary form, and the configuration of a client as a record of them.
#include "Bss/Bss_Bio/BSS_BIO_Decoder.h"
#include "Bss/Bss_Bio/BSS_BIO_Writer.h"
#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"
#include "Bss/Bss_Net/BSS_NET_TcpIpClientCfgRecord.h"

#include "Support/LogCapture.h"
#include "Support/ReportCapture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace BSS;
using namespace BSS::BIO;
using namespace BSS::NET;

namespace {

using BytesT = std::vector<std::uint8_t>;

class PersistencyTest : public testing::Test
{
protected:
    static BytesT BytesOf(const SimpleBufferC& from)
    {
        return BytesT(from.getData(), from.getData() + from.getSize());
    }
    static BytesT Record()
    {
        NetTcpIpClientCfgT config;
        config.m_wszIpDnsName = L"ab";
        config.m_unServerPort = 0x1234;
        config.m_eAutoConnect = AutoConnect::WITH_TIMER;
        config.m_ulMaxReceiveTimeoutMs = 3000;
        SimpleBufferC buffer(100);
        WriterC writer(buffer);
        EXPECT_EQ(StoreClientCfg(writer, config), RC_OK);
        return BytesOf(buffer);
    }
    static ResultCodeT Load(const BytesT& bytes, NetTcpIpClientCfgT& config)
    {
        ReaderC reader(bytes.data(), bytes.size());
        return LoadClientCfg(reader, config);
    }
    static ResultCodeT LoadWith(std::size_t place, std::uint8_t value)
    {
        BytesT bytes = Record();
        bytes[place] = value;
        NetTcpIpClientCfgT config;
        return Load(bytes, config);
    }

    const Support::LogCapture systemLog;
    Support::ReportCapture reports;
    SimpleBufferC buffer{64};
    WriterC writer{buffer};
};

TEST_F(PersistencyTest, NumbersAreLittleEndian)
{
    writer.write("a", std::uint8_t{1});
    writer.write("b", std::uint16_t{0x0203});
    writer.write("c", std::uint32_t{0x04050607});
    writer.write("d", std::uint64_t{0x08090A0B0C0D0E0F});
    EXPECT_EQ(BytesOf(buffer), (BytesT{1, 3, 2, 7, 6, 5, 4, 15, 14, 13, 12, 11, 10, 9, 8}));
    EXPECT_EQ(writer.getPosition(), 15U);
}

TEST_F(PersistencyTest, WhatIsStoredIsLoaded)
{
    writer.write("a", std::int32_t{-5});
    writer.writeText("n", L"Gr\u00FC\u00DFe \U0001F600");
    ReaderC reader(buffer.getData(), buffer.getSize());
    EXPECT_EQ(reader.read<std::int32_t>("a"), -5);
    EXPECT_EQ(reader.readText("n"), L"Gr\u00FC\u00DFe \U0001F600");
    EXPECT_EQ(reader.getRest(), 0U);
}

TEST_F(PersistencyTest, LoneSurrogatesComeBackAsTheyWere)
{
    const BytesT bytes = {3, 0, 0x00, 0xD8, 0x41, 0, 0x00, 0xDC};
    ReaderC reader(bytes.data(), bytes.size());
    writer.writeText("n", reader.readText("n"));
    EXPECT_EQ(BytesOf(buffer), bytes);
}

TEST_F(PersistencyTest, StoringBeyondTheLimitThrowsAndStoresNothing)
{
    SimpleBufferC small(3);
    WriterC full(small);
    full.write("a", std::uint16_t{1});
    EXPECT_THROW(full.write("b", std::uint16_t{1}), OverflowExceptionC);
    EXPECT_EQ(small.getSize(), 2U);
}

TEST_F(PersistencyTest, LoadingBeyondTheEndThrowsTheBoundsCode)
{
    const BytesT bytes = {1, 2, 3};
    ReaderC reader(bytes.data(), bytes.size());
    reader.read<std::uint16_t>("a");
    try {
        reader.read<std::uint16_t>("b");
        FAIL() << "nothing was thrown";
    } catch (const OverflowExceptionC& error) {
        EXPECT_TRUE(std::string(error.what()).ends_with(": rc=33554441")) << error.what();
    }
    EXPECT_EQ(reader.getPosition(), 2U);
}

TEST_F(PersistencyTest, TextThatIsTooLongForItsLengthThrows)
{
    SimpleBufferC large(1000000);
    WriterC toLarge(large);
    EXPECT_THROW(toLarge.writeText("n", std::wstring(65536, L'a')), OverflowExceptionC);
    EXPECT_EQ(large.getSize(), 0U);
}

TEST_F(PersistencyTest, ReaderWithoutABufferSaysThatItIsMissing)
{
    ReaderC reader(nullptr, 100);
    EXPECT_EQ(reader.getRest(), 0U);
    try {
        reader.read<std::uint8_t>("value");
        FAIL() << "a value without a buffer";
    } catch (const OverflowExceptionC& error) {
        EXPECT_EQ(error.GetResultCode(), RC_OBJECT_MISSING);
    }
    NetTcpIpClientCfgT config;
    EXPECT_EQ(LoadClientCfg(reader, config), RC_OBJECT_MISSING);
}

TEST_F(PersistencyTest, WritingToAReaderIsReportedAndDoesNothing)
{
    ReaderC reader(nullptr, 0);
    reader.write("a", 1);
    EXPECT_EQ(reports.Count("!\"Write not allowed!\""), 1U);
}

TEST_F(PersistencyTest, ReadingFromAWriterIsReportedAndGivesZero)
{
    EXPECT_EQ(writer.read<std::uint32_t>("a"), 0U);
    EXPECT_EQ(reports.Count("!\"Read not allowed!\""), 1U);
}

TEST_F(PersistencyTest, NumbersOutOfLineAreReportedWhenThatIsChecked)
{
    writer.write("a", std::uint8_t{1});
    writer.write("b", std::uint16_t{1});
    EXPECT_EQ(reports.Count("0 == position % size"), 0U);
    writer.setAlignmentCheck(true);
    writer.write("c", std::uint16_t{1});
    EXPECT_EQ(reports.Count("0 == position % size"), 1U);
}

TEST_F(PersistencyTest, RecordHasItsValuesInTheirOrder)
{
    EXPECT_EQ(Record(), (BytesT{1, 1, 2, 0, 'a', 0, 'b', 0, 0x34, 0x12, 1, 0, 0, 0, 0xB8, 0x0B, 0, 0}));
}

TEST_F(PersistencyTest, RecordHasItsNames)
{
    const BytesT bytes = Record();
    DecoderC decoder(bytes.data(), bytes.size());
    NetTcpIpClientCfgT config;
    ASSERT_EQ(LoadClientCfg(decoder, config), RC_OK);
    EXPECT_EQ(decoder.getLines(), "MainVersion = 1\nSubVersion = 1\nunSvrNameLen = 2\n\"ab\"\n"
                                  "m_unServerPort = 4660\n(uint32_t)m_eAutoConnect = 1\n"
                                  "(uint32_t)m_ulMaxReceiveTimeoutMs = 3000\n");
}

TEST_F(PersistencyTest, RecordIsLoadedAsItWasStored)
{
    NetTcpIpClientCfgT config;
    ASSERT_EQ(Load(Record(), config), RC_OK);
    EXPECT_EQ(config.m_wszIpDnsName, L"ab");
    EXPECT_EQ(config.m_unServerPort, 0x1234);
    EXPECT_EQ(config.m_eAutoConnect, AutoConnect::WITH_TIMER);
    EXPECT_EQ(config.m_ulMaxReceiveTimeoutMs, 3000U);
}

TEST_F(PersistencyTest, RecordThatIsCutOffAnywhereIsRefusedAndChangesNothing)
{
    const BytesT bytes = Record();
    for (std::size_t count = 0; count < bytes.size(); ++count) {
        NetTcpIpClientCfgT config;
        config.m_unServerPort = 77;
        EXPECT_EQ(Load(BytesT(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)), config),
                  RC_BUFFER_BOUNDS)
            << count;
        EXPECT_EQ(config.m_unServerPort, 77);
    }
}

TEST_F(PersistencyTest, OtherMainVersionIsRejected)
{
    EXPECT_EQ(LoadWith(0, 0), RC_VALUE_REJECTED);
    EXPECT_EQ(LoadWith(0, 2), RC_VALUE_REJECTED);
}

TEST_F(PersistencyTest, LaterSubVersionIsRead)
{
    EXPECT_EQ(LoadWith(1, 0), RC_VALUE_REJECTED);
    EXPECT_EQ(LoadWith(1, 2), RC_OK);
}

TEST_F(PersistencyTest, NameThatReachesBeyondTheRecordIsABoundsViolation)
{
    EXPECT_EQ(LoadWith(3, 0xFF), RC_BUFFER_BOUNDS);
}

TEST_F(PersistencyTest, UnknownAutoConnectModeIsRejected)
{
    EXPECT_EQ(LoadWith(10, 2), RC_OK);
    EXPECT_EQ(LoadWith(10, 3), RC_VALUE_REJECTED);
    EXPECT_EQ(LoadWith(13, 1), RC_VALUE_REJECTED);
}

TEST_F(PersistencyTest, NameWithAZeroInsideIsRefused)
{
    EXPECT_EQ(LoadWith(4, 0), RC_INVALID_ARGUMENT);
}

class RecordRefusedTest : public PersistencyTest
{
protected:
    /// A record that is whole but for one value.
    static BytesT With(const std::string& name, std::uint16_t port)
    {
        SimpleBufferC buffer(2000);
        WriterC writer(buffer);
        writer.write("MainVersion", std::uint8_t{1});
        writer.write("SubVersion", std::uint8_t{1});
        writer.writeText("unSvrNameLen", std::wstring(name.begin(), name.end()));
        writer.write("m_unServerPort", port);
        writer.write("(uint32_t)m_eAutoConnect", std::uint32_t{1});
        writer.write("(uint32_t)m_ulMaxReceiveTimeoutMs", std::uint32_t{0});
        return BytesOf(buffer);
    }
    NetTcpIpClientCfgT config;
};

TEST_F(RecordRefusedTest, NameOfTheGreatestLengthIsLoaded)
{
    EXPECT_EQ(Load(With(std::string(255, 'n'), 1), config), RC_OK);
    EXPECT_EQ(config.m_wszIpDnsName.size(), 255U);
}

TEST_F(RecordRefusedTest, LongerNameIsRefused)
{
    EXPECT_EQ(Load(With(std::string(256, 'n'), 1), config), RC_INVALID_ARGUMENT);
}

TEST_F(RecordRefusedTest, EmptyNameIsRefused)
{
    EXPECT_EQ(Load(With("", 1), config), RC_INVALID_ARGUMENT);
}

TEST_F(RecordRefusedTest, PortZeroIsRefused)
{
    EXPECT_EQ(Load(With("n", 0), config), RC_INVALID_ARGUMENT);
}

TEST_F(RecordRefusedTest, WhatCouldNotBeLoadedIsNotStored)
{
    config.m_wszIpDnsName = L"n";
    EXPECT_EQ(StoreClientCfg(writer, config), RC_INVALID_ARGUMENT);
    config.m_unServerPort = 1;
    config.m_eAutoConnect = static_cast<AutoConnect>(77);
    EXPECT_EQ(StoreClientCfg(writer, config), RC_VALUE_REJECTED);
    config.m_eAutoConnect = AutoConnect::OFF;
    config.m_wszIpDnsName.clear();
    EXPECT_EQ(StoreClientCfg(writer, config), RC_INVALID_ARGUMENT);
    EXPECT_EQ(buffer.getSize(), 0U);
}

} // namespace
