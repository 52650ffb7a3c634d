// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client's losses cost in memory, as the heap counts it. A sanitizer's heap is another one,
// which looks for leaks itself.
#include "Bss/Bss_Net/BSS_NET_TcpIpClient.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/LogCapture.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <string>

using namespace BSS;
using namespace BSS::NET;
using namespace NetTests;

namespace {

std::size_t SizeBehind(const std::string& text, const std::string& words)
{
    const std::size_t place = text.rfind(words); // of the whole, behind the parts
    const std::size_t size = text.find("size=\"", place);
    return place == std::string::npos ? 0 : std::strtoull(text.c_str() + size + 6, nullptr, 10);
}

/// Bytes of all threads that are in use.
std::size_t HeapInUse()
{
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const file = ::open_memstream(&text, &size);
    EXPECT_EQ(::malloc_info(0, file), 0);
    std::fclose(file);
    const std::string all(text, size);
    std::free(text);
    return SizeBehind(all, "<system type=\"current\"") - SizeBehind(all, "<total type=\"fast\"") -
           SizeBehind(all, "<total type=\"rest\"");
}

class CounterC final : public BIO::PortWriterI
{
public:
    void onPortEvent(BIO::PortEvent event, BIO::PortReason) override
    {
        if (event == BIO::ONLINE) ++nOnline;
    }
    std::atomic<int> nOnline{0};
};

TEST(TcpIpClientMemoryPosixTest, ThousandLossesKeepNoMemory)
{
    const Support::LogCapture systemLog;
    ListenerC listener;
    NetTcpIpClientCfgT config;
    config.m_wszIpDnsName = L"localhost"; // asked for on a thread each time
    config.m_unServerPort = listener.port();
    config.m_eAutoConnect = AutoConnect::IMMEDIATELY;
    NetTcpIpClientSettingsT settings;
    settings.reconnect.minSpacingMs = 0;
    CounterC counter;
    NetTcpIpClientC client(settings);
    ASSERT_EQ(client.setPortConfig(config), RC_OK);
    ASSERT_EQ(client.attachWriter(counter), RC_OK);
    client.start();
    int nOnline = 0;
    const auto lose = [&](int nTimes) {
        for (int n = 0; n < nTimes; ++n) {
            const HeldSocketC peer = listener.accept();
            ASSERT_TRUE(Support::Eventually([&] { return counter.nOnline > nOnline; })) << n;
            ++nOnline;
        }
    };
    lose(200); // what is kept for later by the system and by threads
    const std::size_t before = HeapInUse();
    lose(3000);
    // The smallest block that there is, for every loss, would be 96000 bytes; so much is other threads' at
    // one moment and not at the other.
    constexpr std::size_t NOISE_BYTES = 50000;
    EXPECT_LT(HeapInUse(), before + NOISE_BYTES);
    client.stop();
    EXPECT_TRUE(client.waitForStop(LONG_MS));
}

} // namespace
