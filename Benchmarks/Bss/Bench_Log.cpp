// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Our logger to a file without limit, and the comparison. Each candidate's time ends when its lines are with
// the system.
#include "Bench_Bss.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLevel.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace Bench {

namespace {

constexpr unsigned s_uiLines = 400000;
constexpr unsigned s_uiFlushedLines = 60000;

class OwnLoggerC final : public LoggerI
{
public:
    OwnLoggerC() : m_consumer("bench", L"bench_own.log", 0) {}

    void Log(unsigned uiFirst, unsigned uiCount) override
    {
        for (unsigned i = uiFirst; i < uiFirst + uiCount; ++i)
            m_consumer.Log(BSS::DBG::LEVEL_INFO, "block %u of %u: %d points at offset %d, file %s", i,
                           uiCount, static_cast<int>(i) * 3, -static_cast<int>(i), "survey/station-12.qsb");
    }
    void FlushEveryLine() override { m_consumer.setFlushLevel(BSS::DBG::LEVEL_FINEST); }
    void Flush() override
    {
        const int iBefore = m_consumer.getFlushLevel();
        m_consumer.setFlushLevel(BSS::DBG::LEVEL_FINEST);
        m_consumer.Log(BSS::DBG::LEVEL_INFO, "end");
        m_consumer.setFlushLevel(iBefore);
    }

private:
    BSS::DBG::DbgLogFileConsumerC m_consumer;
};

// The files must hold every line, or nothing was measured.
void Check(const std::string& strPath, unsigned uiLines)
{
    std::ifstream file(strPath);
    unsigned uiFound = 0;
    for (std::string line; std::getline(file, line);)
        uiFound += line.find("block ") != std::string::npos ? 1 : 0;
    if (uiFound != uiLines) {
        std::fprintf(stderr, "%s: %u lines, not %u\n", strPath.c_str(), uiFound, uiLines);
        std::exit(1);
    }
    std::remove(strPath.c_str());
}

void Half(LoggerI& logger, unsigned uiLines)
{
    std::thread other([&] { logger.Log(0, uiLines / 2); });
    logger.Log(uiLines / 2, uiLines / 2);
    other.join();
}

void Compare(const OptionsT& options, unsigned uiLines, bool bFlushed)
{
    BSS::OS::SetLogDirectory(BSS::HAL::WidePath(options.strDirectory));
    using MakeT = std::unique_ptr<LoggerI> (*)(const std::string&);
    const std::string strOwn = options.strDirectory + "/bench_own.log";
    const std::string strSpdlog = options.strDirectory + "/bench_spdlog.log";
    const auto candidate = [&](const char* pszName, MakeT make, const std::string& strFile, bool bTwo) {
        auto logger = std::make_shared<std::unique_ptr<LoggerI>>();
        const auto run = [&options, logger, make, uiLines, bFlushed, bTwo] {
            *logger = make(options.strDirectory);
            if (bFlushed) (*logger)->FlushEveryLine();
            if (bTwo) {
                Half(**logger, uiLines);
            } else {
                (*logger)->Log(0, uiLines);
            }
            (*logger)->Flush();
        };
        return CandidateT{pszName, run, [logger, strFile, uiLines] {
                              logger->reset();
                              Check(strFile, uiLines);
                          }};
    };
    for (const bool bTwo : {false, true}) {
        std::printf("%u lines by %s\n", uiLines, bTwo ? "two threads" : "one thread");
        std::vector<CandidateT> candidates = {
            candidate("ours", &MakeOwnLogger, strOwn, bTwo),
            candidate("spdlog basic_file_sink_mt", &MakeSpdlogLogger, strSpdlog, bTwo)};
        RunInterleaved(candidates, options.nRounds);
        PrintTimes(candidates);
        PrintRatio("messages per second, ours to spdlog's", candidates[1], candidates[0]);
    }
    BSS::OS::SetLogDirectory(L"");
}

} // namespace

// What a run that was broken off has left would be appended to.
std::unique_ptr<LoggerI> MakeOwnLogger(const std::string& strDirectory)
{
    std::remove((strDirectory + "/bench_own.log").c_str());
    return std::make_unique<OwnLoggerC>();
}

void RunLogFile(const OptionsT& options)
{
    Compare(options, s_uiLines, false);
}

void RunLogFlushed(const OptionsT& options)
{
    Compare(options, s_uiFlushedLines, true);
}

} // namespace Bench
