// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A program that reads scans in some other way, kept running so that it can take its turn in every round. It
// says "ready" and what it is, or why it cannot take part; then it reads a scan each time it is given a line,
// and answers with the seconds that this took.
#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Bench {

class PeerC
{
public:
    explicit PeerC(const std::vector<std::string>& command);
    ~PeerC();
    PeerC(const PeerC&) = delete;
    PeerC& operator=(const PeerC&) = delete;

    bool IsReady() const { return m_bReady; }

    /// What it is, or why it is not ready.
    const std::string& What() const { return m_strWhat; }

    /// Has it read once, in the way that `strHow` names.
    double Read(const std::string& strHow);

private:
    std::string Line();

    pid_t m_iProcess = -1;
    std::FILE* m_pToPeer = nullptr;
    std::FILE* m_pFromPeer = nullptr;
    bool m_bReady = false;
    std::string m_strWhat;
};

} // namespace Bench
