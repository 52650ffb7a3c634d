// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two pipes and a process.
#include "Bench_Peer.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {

PeerC::PeerC(const std::vector<std::string>& command) : m_strWhat("did not start")
{
    int aiTo[2];
    int aiFrom[2];
    if (pipe(aiTo) != 0) return;
    if (pipe(aiFrom) != 0) return;
    std::signal(SIGPIPE, SIG_IGN); // a peer that has gone is noticed by its silence
    std::vector<char*> arguments;
    for (const std::string& str : command)
        arguments.push_back(const_cast<char*>(str.c_str()));
    arguments.push_back(nullptr);
    m_iProcess = fork();
    if (m_iProcess == 0) {
        dup2(aiTo[0], 0);
        dup2(aiFrom[1], 1);
        for (const int i : {aiTo[0], aiTo[1], aiFrom[0], aiFrom[1]})
            close(i);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(aiTo[0]);
    close(aiFrom[1]);
    m_pToPeer = fdopen(aiTo[1], "w");
    m_pFromPeer = fdopen(aiFrom[0], "r");
    const std::string strAnswer = Line();
    m_bReady = strAnswer.rfind("ready ", 0) == 0;
    if (!strAnswer.empty()) m_strWhat = m_bReady ? strAnswer.substr(6) : strAnswer;
}

PeerC::~PeerC()
{
    if (m_pToPeer != nullptr) std::fclose(m_pToPeer); // it ends when it is given nothing more
    if (m_pFromPeer != nullptr) std::fclose(m_pFromPeer);
    if (m_iProcess > 0) waitpid(m_iProcess, nullptr, 0);
}

double PeerC::Read(const std::string& strHow)
{
    std::fprintf(m_pToPeer, "%s\n", strHow.c_str());
    std::fflush(m_pToPeer);
    const std::string strSeconds = Line();
    const double dSeconds = std::strtod(strSeconds.c_str(), nullptr);
    if (dSeconds > 0) return dSeconds;
    std::fprintf(stderr, "scanreader_bench: %s: %s\n", m_strWhat.c_str(), strSeconds.c_str());
    std::exit(1);
}

std::string PeerC::Line()
{
    char acLine[512] = "";
    if (m_pFromPeer == nullptr || std::fgets(acLine, sizeof acLine, m_pFromPeer) == nullptr) return {};
    acLine[std::strcspn(acLine, "\n")] = '\0';
    return acLine;
}

} // namespace Bench
