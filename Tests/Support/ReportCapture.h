// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Collects every assertion and panic raised while it lives, in the order they come, so that a test can say
// which report it expects. Registers itself as the panic handler, so one test uses one at a time. Reports may
// come from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_PanicHandlerRegistry.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Support {

struct ReportT
{
    enum class Kind
    {
        Assertion,
        Panic
    };

    Kind kind = Kind::Assertion;
    std::string text;       ///< the expression of an assertion, the format of a panic
    std::uint32_t type = 0; ///< of a panic
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::string file;
    std::int32_t line = 0;
};

class ReportCapture final : public BSS::ERR::SysPanicHandlerI
{
public:
    ReportCapture() { BSS::ERR::GetPanicHandlerRegistry().Register(this, true); }
    ~ReportCapture() override { BSS::ERR::GetPanicHandlerRegistry().Unregister(this); }
    ReportCapture(const ReportCapture&) = delete;
    ReportCapture& operator=(const ReportCapture&) = delete;

    std::vector<ReportT> Reports() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_reports;
    }

    /// How many assertions and panics bear exactly this text.
    std::size_t Count(const std::string& text) const
    {
        std::size_t count = 0;
        for (const ReportT& report : Reports())
            count += report.text == text ? 1 : 0;
        return count;
    }

    void Clear()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_reports.clear();
    }

    void Panic(const char* format, BSS::ResultCodeT type, std::uint32_t first, std::uint32_t second,
               const char* file, std::int32_t line) override
    {
        Add({ReportT::Kind::Panic, format, type, first, second, file, line});
    }

    bool Assert(const char* expression, std::uint32_t first, std::uint32_t second, const char* file,
                std::int32_t line) override
    {
        Add({ReportT::Kind::Assertion, expression, 0, first, second, file, line});
        return true;
    }

private:
    void Add(const ReportT& report)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_reports.push_back(report);
    }

    mutable std::mutex m_lock;
    std::vector<ReportT> m_reports;
};

} // namespace Support
