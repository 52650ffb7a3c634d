// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which addresses the log over the network listens on: the configuration says.
#include "Bss/Bss_Dbg/BSS_DBG_LogTcpIpServer.h"

#include "Loopback.h"
#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/LogCapture.h"
#include "Support/TemporaryDirectory.h"

using namespace BSS;
using namespace NetTests;

namespace {

class LogTcpIpServerAddressTest : public testing::Test
{
protected:
    /// Whether a server that is configured so answers at another address of this machine than 127.0.0.1.
    bool AnswersElsewhere(const std::string& configuration) const
    {
        Support::WriteAll(m_directory.Narrow("scanreader.conf"), configuration);
        DBG::DbgLogTcpIpServerC server("");
        server.configure(0);
        EXPECT_EQ(server.start(), RC_OK);
        const std::uint16_t port = server.getServer().getPort();
        EXPECT_EQ(HAL::ConnectSocket(Open(), Address("127.0.0.1", port)), 0);
        return HAL::ConnectSocket(Open(), Address("127.0.0.2", port)) == 0;
    }

private:
    const SocketsStartedC m_started;
    const Support::LogCapture m_systemLog;
    const Support::TemporaryDirectory m_directory;
    const Support::ScopedEnvironment m_environment{"SCANREADER_CONFIG_DIR", m_directory.Narrow("")};
};

TEST_F(LogTcpIpServerAddressTest, LoopbackAloneUnlessTheConfigurationOpensIt)
{
    EXPECT_FALSE(AnswersElsewhere(""));
    EXPECT_FALSE(AnswersElsewhere("[Configuration]\nTcpIpLogAnyAddress = 0\n"));
}

TEST_F(LogTcpIpServerAddressTest, AllAddressesWhenTheConfigurationSaysSo)
{
    EXPECT_TRUE(AnswersElsewhere("[Configuration]\nTcpIpLogAnyAddress = 1\n"));
}

TEST_F(LogTcpIpServerAddressTest, ValueThatIsNoNumberOpensNothing)
{
    EXPECT_FALSE(AnswersElsewhere("[Configuration]\nTcpIpLogAnyAddress = yes\n"));
}

} // namespace
