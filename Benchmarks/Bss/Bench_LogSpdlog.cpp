// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The other logger, as its own documentation sets it up.
#include "Bench_Bss.h"

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace Bench {

namespace {

class SpdlogLoggerC final : public LoggerI
{
public:
    explicit SpdlogLoggerC(const std::string& strDirectory)
        : m_logger("bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(
                                strDirectory + "/bench_spdlog.log", true))
    {
        m_logger.set_pattern("[%Y-%m-%dT%H:%M:%S.%e] Main Thread         (%t)/   0 %l %v");
    }

    void Log(unsigned uiFirst, unsigned uiCount) override
    {
        for (unsigned i = uiFirst; i < uiFirst + uiCount; ++i)
            m_logger.info("block {} of {}: {} points at offset {}, file {}", i, uiCount,
                          static_cast<int>(i) * 3, -static_cast<int>(i), "survey/station-12.qsb");
    }
    void FlushEveryLine() override { m_logger.flush_on(spdlog::level::trace); }
    void Flush() override { m_logger.flush(); }

private:
    spdlog::logger m_logger;
};

} // namespace

std::unique_ptr<LoggerI> MakeSpdlogLogger(const std::string& strDirectory)
{
    return std::make_unique<SpdlogLoggerC>(strDirectory);
}

void SpdlogDisabled(unsigned uiStretches)
{
    static spdlog::logger* const s_pLogger = new spdlog::logger("disabled");
    spdlog::logger* pLogger = s_pLogger;
    asm volatile("" : "+r"(pLogger)); // nobody knows which one it is
    for (unsigned n = 0; n < uiStretches; ++n) {
        pLogger->set_level(n % 2 == 0 ? spdlog::level::warn : spdlog::level::err);
        for (unsigned i = 0; i < s_uiDisabledStretch; ++i) {
            pLogger->info("block {} of {}", i, uiStretches);
            asm volatile("" ::: "memory");
        }
    }
}

} // namespace Bench
