// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogConfiguration.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Bss/Bss_Os/BSS_OS_PathMapI.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

namespace BSS::DBG {

namespace {

struct CloseStream
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};

bool IsThere(const std::wstring& path)
{
    boost::system::error_code ignored;
    return boost::filesystem::exists(boost::filesystem::symlink_status(HAL::FilesystemPath(path), ignored));
}

} // namespace

void LogConfigurationC::Add(const LogConfigLineT& line)
{
    m_ofProgram[line.consumer] = line.settings;
    m_ofFile.erase(line.consumer);
}

std::vector<LogConfigFaultT> LogConfigurationC::ReplaceFile(std::string_view text)
{
    std::vector<LogConfigFaultT> faults;
    m_ofFile.clear();
    text = HAL::WithoutByteOrderMark(text);
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, length);
        text.remove_prefix(length);
        if (IsEmptyLogConfigLine(line)) continue;
        const std::optional<LogConfigLineT> read = ParseLogConfigLine(line);
        if (read) m_ofFile[read->consumer] = read->settings;
        if (!read || !read->notUnderstood.empty()) faults.push_back({number, read.has_value()});
    }
    return faults;
}

const LogSettingsT* LogConfigurationC::FindLine(const std::string& consumer) const
{
    for (const LinesT* const lines : {&m_ofFile, &m_ofProgram})
        if (const auto found = lines->find(consumer); found != lines->end()) return &found->second;
    return nullptr;
}

const LogSettingsT* LogConfigurationC::Find(const std::string& consumer) const
{
    const LogSettingsT* const own = FindLine(consumer);
    return own != nullptr ? own : FindLine(EVERY_CONSUMER);
}

std::wstring LogConfigurationFile()
{
    UTI::StringC directory;
    if (OS::GetPathMap().GetPath(OS::PathKind::Configuration, directory) != RC_OK) return {};
    return HAL::JoinPath(directory.Text(), L"logging.conf");
}

LogConfigFileT ReadLogConfigurationFile()
{
    const std::wstring path = LogConfigurationFile();
    if (path.empty() || !IsThere(path)) return {};
    std::unique_ptr<std::FILE, CloseStream> stream(HAL::OpenStream(path, "rb"));
    std::uint64_t size = 0;
    if (!stream || !HAL::StreamSize(stream.get(), size)) return {LogConfigFileState::Unreadable, {}};
    if (size > MAX_LOG_CONFIG_BYTES) return {LogConfigFileState::TooLarge, {}};
    std::string text(static_cast<std::size_t>(size), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), stream.get()));
    if (std::ferror(stream.get()) != 0) return {LogConfigFileState::Unreadable, {}};
    return {LogConfigFileState::Read, std::move(text)};
}

} // namespace BSS::DBG
