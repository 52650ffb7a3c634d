// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The log consumer "TcpIp" as programs have it, at its port, in a network where nobody else can have that.
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpServer.h"

#include "Loopback.h"
#include "Support/Eventually.h"
#include "Support/OwnNetwork_Posix.h"

#include <array>
#include <memory>
#include <string>

using namespace BSS;
using namespace BSS::DBG;
using namespace NetTests;

namespace {

/// Whether a client at the port is sent what the consumer is told.
int StreamsTo(HAL::SocketT client, DbgLogConsumerC& consumer)
{
    const auto isThere = [&] {
        consumer.Log(LEVEL_INFO, "over the %s", "network"); // goes to the clients of its moment
        return CanRead(client, 1);
    };
    if (!Support::Eventually(isThere)) return 4;
    std::array<char, 4096> bytes = {};
    std::string text;
    while (text.find('\n') == std::string::npos && CanRead(client))
        text.append(bytes.data(), HAL::ReceiveBytes(client, bytes.data(), bytes.size()).count);
    text.resize(text.find('\n') + 1);
    return text.ends_with(" INFO over the network\n") ? 0 : 5;
}

int StreamLines()
{
    InstallTcpIpLogServer();
    InstallTcpIpLogConsumer();
    const std::shared_ptr<DbgLogConsumerC> consumer = DbgLogMgrC::instance().getConsumer("TcpIp");
    if (!consumer) return 1;
    if (!consumer->isOpen()) return 2;
    const HeldSocketC client = Open();
    if (HAL::ConnectSocket(client, Address("127.0.0.1", 10002)) != 0) return 3;
    return StreamsTo(client, *consumer);
}

TEST(LogTcpIpPortDeathTest, ConsumerOfTheLogManagerStreamsItsLinesAtItsPort)
{
    Support::ExpectInOwnNetwork(&StreamLines);
}

} // namespace
