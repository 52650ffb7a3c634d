// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The checks of a target, and the steps that put the finished file in its place.
#include "Tools/Qsb/Tool_OutputFile.h"

#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Tools/Qsb/Tool_Error.h"

#include <boost/filesystem/operations.hpp>
#include <fmt/format.h>

namespace Tool {

namespace {

namespace fs = boost::filesystem;

constexpr char s_szNotRegular[] = "is not a regular file, so it is not written to";

[[noreturn]] void Fail(const std::string& target, const std::string& reason)
{
    throw ToolErrorC(s_iFailed, fmt::format("{}: {}", target, reason));
}

fs::path PathOf(const std::string& narrow)
{
    return BSS::HAL::FilesystemPath(BSS::HAL::WidePath(narrow));
}

void CheckExisting(const std::string& target, const fs::file_status& status, bool bOverwrite)
{
    if (fs::is_directory(status)) Fail(target, "is a folder; name a file");
    if (!fs::is_regular_file(status)) Fail(target, s_szNotRegular);
    if (!bOverwrite) Fail(target, "exists already; --overwrite replaces it");
}

void CheckInputs(const std::string& target, const fs::path& path, const std::vector<std::string>& inputs)
{
    for (const std::string& input : inputs) {
        boost::system::error_code error;
        if (fs::equivalent(path, PathOf(input), error) && !error) {
            Fail(target, "is the input as well; name another output");
        }
    }
}

/// The target without symbolic links, checked as far as it can be before anything is written.
fs::path Resolve(const std::string& target, bool bOverwrite, const std::vector<std::string>& inputs)
{
    fs::path path = PathOf(target);
    if (path.empty() || path.filename_is_dot() || path.filename_is_dot_dot())
        Fail(target, "is not a file name");
    if (BSS::HAL::NamesDevice(BSS::HAL::WidePath(target))) Fail(target, s_szNotRegular);
    boost::system::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status)) {
        CheckInputs(target, path, inputs);
        CheckExisting(target, status, bOverwrite);
        const fs::path canonical = fs::canonical(path, error);
        return error ? path : canonical;
    }
    if (status.type() != fs::file_not_found)
        Fail(target, fmt::format("cannot be written: {}", error.message()));
    if (fs::is_symlink(fs::symlink_status(path, error))) Fail(target, "is a symbolic link to nothing");
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) Fail(target, "its folder does not exist; make it first");
    return path;
}

bool FlushToDisk(const std::wstring& path)
{
    std::FILE* stream = BSS::HAL::OpenStream(path, "r+b");
    if (stream == nullptr) return false;
    const bool bSynced = BSS::HAL::SyncStream(stream);
    return std::fclose(stream) == 0 && bSynced;
}

void KeepPermissions(const std::wstring& from, const std::wstring& to)
{
    // Without the right to change them the new file simply has the default permissions.
    boost::system::error_code error;
    const fs::file_status status = fs::status(BSS::HAL::FilesystemPath(from), error);
    if (fs::exists(status)) fs::permissions(BSS::HAL::FilesystemPath(to), status.permissions(), error);
}

} // namespace

OutputFileC::OutputFileC(const std::string& target, bool bOverwrite, const std::vector<std::string>& inputs)
    : m_strTarget(target), m_bOverwrite(bOverwrite),
      m_strResolved(BSS::HAL::WidePathOf(Resolve(target, bOverwrite, inputs))),
      m_strTemporary(BSS::HAL::NarrowPath(BSS::HAL::TemporaryNameBeside(m_strResolved)))
{}

OutputFileC::~OutputFileC()
{
    if (!m_bCommitted) (void)BSS::HAL::RemoveFile(BSS::HAL::WidePath(m_strTemporary));
}

void OutputFileC::Commit()
{
    const std::wstring temporary = BSS::HAL::WidePath(m_strTemporary);
    if (!FlushToDisk(temporary)) Fail(m_strTarget, "could not be written to disk; is there room left?");
    if (m_bOverwrite) KeepPermissions(m_strResolved, temporary);
    const auto eResult = m_bOverwrite ? BSS::HAL::RenameOver(temporary, m_strResolved)
                                      : BSS::HAL::RenameNew(temporary, m_strResolved);
    if (eResult == BSS::HAL::RenameResult::Exists)
        Fail(m_strTarget, "has come into being; --overwrite replaces it");
    if (eResult == BSS::HAL::RenameResult::Failed)
        Fail(m_strTarget, "the finished file could not be renamed to it");
    m_bCommitted = true;
    (void)BSS::HAL::SyncDirectoryOf(m_strResolved); // Not every file system can; the file itself is on disk.
}

} // namespace Tool
