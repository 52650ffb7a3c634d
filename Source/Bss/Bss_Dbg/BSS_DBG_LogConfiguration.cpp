// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogConfiguration.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

namespace BSS::DBG {

namespace {

constexpr std::uint64_t MAX_FILE_BYTES = 1 << 20;

struct CloseStream
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};

} // namespace

bool LogConfigurationC::Add(std::string_view line)
{
    if (IsEmptyLogConfigLine(line)) return true;
    std::optional<LogConfigLineT> read = ParseLogConfigLine(line);
    if (!read) return false;
    m_settings[read->consumer] = read->settings;
    return true;
}

std::vector<std::size_t> LogConfigurationC::AddText(std::string_view text)
{
    std::vector<std::size_t> unread;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        if (!Add(text.substr(0, end + 1))) unread.push_back(number);
        text.remove_prefix(end + 1);
    }
    return unread;
}

const LogSettingsT* LogConfigurationC::Find(const std::string& consumer) const
{
    auto found = m_settings.find(consumer);
    if (found == m_settings.end()) found = m_settings.find(EVERY_CONSUMER);
    return found == m_settings.end() ? nullptr : &found->second;
}

std::wstring LogConfigurationFile()
{
    const std::wstring directory = HAL::UserConfigDirectory();
    return directory.empty() ? directory : HAL::JoinPath(directory, L"logging.conf");
}

std::string ReadLogConfigurationFile()
{
    const std::wstring path = LogConfigurationFile();
    if (path.empty()) return {};
    const std::unique_ptr<std::FILE, CloseStream> stream(HAL::OpenStream(path, "rb"));
    std::uint64_t size = 0;
    if (!stream || !HAL::StreamSize(stream.get(), size) || size > MAX_FILE_BYTES) return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), stream.get()));
    return text;
}

} // namespace BSS::DBG
