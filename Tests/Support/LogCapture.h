// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Stands in for the system error logger while it lives and keeps what is logged. The usual logger comes back
// afterwards. Messages may come from any thread.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogMgr.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Support {

class LogCapture
{
public:
    /// `inside` is called while a message is being written.
    explicit LogCapture(std::function<void()> inside = {})
        : m_before(BSS::DBG::DbgLogMgrC::instance().getSystemErrorLogger()),
          m_consumer(std::make_shared<Consumer>(std::move(inside)))
    {
        BSS::DBG::DbgLogMgrC::instance().setSystemErrorLogger(m_consumer);
    }
    ~LogCapture() { BSS::DBG::DbgLogMgrC::instance().setSystemErrorLogger(m_before); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Everything logged so far, without prefixes.
    std::string Messages() const { return m_consumer->Text(); }

    /// The level of each message.
    std::vector<int> Levels() const { return m_consumer->Levels(); }

private:
    class Consumer final : public BSS::DBG::DbgLogConsumerC
    {
    public:
        explicit Consumer(std::function<void()> inside)
            : DbgLogConsumerC("capture", BSS::DBG::PrefixKind::None), m_inside(std::move(inside))
        {}

        void logFormatted(int level, const char* format, BSS::UTI::FormatSourceI& arguments) override
        {
            {
                const std::lock_guard<std::mutex> guard(m_lock);
                m_levels.push_back(level);
            }
            DbgLogConsumerC::logFormatted(level, format, arguments);
        }

        std::string Text() const
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            return m_text;
        }

        std::vector<int> Levels() const
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            return m_levels;
        }

    protected:
        bool write(std::string_view lines) override
        {
            if (m_inside) m_inside();
            const std::lock_guard<std::mutex> guard(m_lock);
            m_text += lines;
            return true;
        }

    private:
        std::function<void()> m_inside;
        mutable std::mutex m_lock;
        std::string m_text;
        std::vector<int> m_levels;
    };

    std::shared_ptr<BSS::DBG::DbgLogConsumerC> m_before;
    std::shared_ptr<Consumer> m_consumer;
};

} // namespace Support
