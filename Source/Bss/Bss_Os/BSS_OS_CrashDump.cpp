// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Os/BSS_OS_CrashDump.h"

#include "Bss/Bss_Hal/BSS_HAL_CrashDump.h"
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <string_view>
#include <vector>

namespace BSS::OS {

namespace {

constexpr std::size_t MAX_PROGRAM_LENGTH = 64;

bool IsDigit(wchar_t character) noexcept
{
    return character >= L'0' && character <= L'9';
}

bool IsProgram(const std::wstring& name)
{
    const auto isUsual = [](wchar_t character) {
        return IsDigit(character) || (character >= L'a' && character <= L'z') ||
               (character >= L'A' && character <= L'Z') ||
               std::wstring_view(L"-_.").find(character) != std::wstring_view::npos;
    };
    return !name.empty() && name.size() <= MAX_PROGRAM_LENGTH &&
           std::all_of(name.begin(), name.end(), isUsual);
}

// Whether a file is a dump of that program: nothing else may ever be removed.
bool IsDump(std::wstring_view name, std::wstring_view program)
{
    const std::wstring_view suffix = HAL::CrashDumpSuffix();
    if (!name.starts_with(program) || !name.ends_with(suffix)) return false;
    name.remove_prefix(program.size());
    if (name.size() <= suffix.size()) return false;
    name.remove_suffix(suffix.size());
    constexpr std::wstring_view STAMP = L"-00000000T000000Z-";
    if (name.size() <= STAMP.size()) return false;
    for (std::size_t n = 0; n < name.size(); ++n) {
        const bool bDigit = n >= STAMP.size() || STAMP[n] == L'0';
        if (bDigit ? !IsDigit(name[n]) : name[n] != STAMP[n]) return false;
    }
    return true;
}

// Names in alphabetical order are in the order of time.
void RemoveOlder(const boost::filesystem::path& directory, const std::wstring& program, std::size_t nStay)
{
    std::vector<std::wstring> dumps;
    boost::system::error_code error;
    boost::filesystem::directory_iterator entry(directory, error);
    for (; !error && entry != boost::filesystem::directory_iterator(); entry.increment(error)) {
        std::wstring name = HAL::WidePathOf(entry->path().filename());
        if (IsDump(name, program)) dumps.push_back(std::move(name));
    }
    std::sort(dumps.begin(), dumps.end());
    for (std::size_t n = 0; n + nStay < dumps.size(); ++n)
        boost::filesystem::remove(HAL::FilesystemPath(HAL::JoinPath(HAL::WidePathOf(directory), dumps[n])),
                                  error);
}

} // namespace

CrashDumpC::~CrashDumpC()
{
    restore();
}

ResultCodeT CrashDumpC::install(const CrashDumpSettingsT& settings)
{
    if (!IsProgram(settings.program) || settings.nKept == 0) return RC_INVALID_ARGUMENT;
    const std::wstring wanted = settings.directory.empty() ? HAL::UserLogDirectory() : settings.directory;
    if (m_bInstalled || wanted.empty() || !HAL::MakePrivateDirectory(wanted)) return RC_FAILED;
    boost::system::error_code error;
    const boost::filesystem::path directory = boost::filesystem::absolute(HAL::FilesystemPath(wanted), error);
    if (error || !HAL::InstallCrashDump(HAL::WidePathOf(directory), settings.program)) return RC_FAILED;
    m_bInstalled = true;
    RemoveOlder(directory, settings.program, settings.nKept - 1);
    return RC_OK;
}

void CrashDumpC::restore() noexcept
{
    if (!m_bInstalled) return;
    HAL::RemoveCrashDump();
    m_bInstalled = false;
}

} // namespace BSS::OS
