// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log consumer that keeps the messages it is given, each with its level in front: "4 text". Messages may
// come from any thread.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogConsumer.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace Support {

class LogRecorder : public BSS::DBG::DbgLogConsumerC
{
public:
    LogRecorder() : DbgLogConsumerC("recorder", BSS::DBG::PrefixKind::None) {}

    void logFormatted(int level, const char* format, BSS::UTI::FormatSourceI& arguments) override
    {
        std::string text = std::to_string(level) + " ";
        static_cast<void>(BSS::UTI::AppendFormat(text, MAX_MESSAGE_BYTES, format, arguments));
        const std::lock_guard<std::mutex> guard(m_lock);
        m_messages.push_back(std::move(text));
    }

    void logText(int level, std::string_view text) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_messages.push_back(std::to_string(level) + " " + std::string(text));
    }

    std::vector<std::string> Messages() const
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_messages;
    }

    /// Whether this message came, word for word.
    bool Has(const std::string& message) const
    {
        const std::vector<std::string> messages = Messages();
        return std::find(messages.begin(), messages.end(), message) != messages.end();
    }

    /// The first message that begins so; empty if there is none.
    std::string Beginning(const std::string& text) const
    {
        for (const std::string& message : Messages())
            if (message.starts_with(text)) return message;
        return {};
    }

    void Clear()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_messages.clear();
    }

protected:
    bool write(std::string_view) override { return true; }

private:
    mutable std::mutex m_lock;
    std::vector<std::string> m_messages;
};

} // namespace Support
