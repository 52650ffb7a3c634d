// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Not every file system knows every way to rename without replacing, so there are three.
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constinit std::atomic<unsigned> s_counter = 0;

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

RenameResult ResultOf(int outcome) noexcept
{
    if (outcome == 0) return RenameResult::Done;
    return errno == EEXIST ? RenameResult::Exists : RenameResult::Failed;
}

RenameResult LinkAndUnlink(const std::string& from, const std::string& to)
{
    const RenameResult linked = ResultOf(::link(from.c_str(), to.c_str()));
    if (linked == RenameResult::Done) static_cast<void>(::unlink(from.c_str()));
    return linked;
}

// Takes the name with an empty file of our own, which may then be replaced.
RenameResult ReserveAndRename(const std::string& from, const std::string& to)
{
    const int fd = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return ResultOf(fd);
    ::close(fd);
    if (::rename(from.c_str(), to.c_str()) == 0) return RenameResult::Done;
    static_cast<void>(::unlink(to.c_str()));
    return RenameResult::Failed;
}

} // namespace

std::wstring TemporaryNameBeside(const std::wstring& target)
{
    const std::string stem =
        DirectoryOf(NarrowPath(target)) + "/.scanreader-" + std::to_string(::getpid()) + "-";
    for (;;) {
        const std::string name = stem + std::to_string(s_counter.fetch_add(1)) + ".tmp";
        struct stat info = {};
        if (::lstat(name.c_str(), &info) != 0) return WidePath(name);
    }
}

RenameResult RenameOver(const std::wstring& from, const std::wstring& to)
{
    return std::rename(NarrowPath(from).c_str(), NarrowPath(to).c_str()) == 0 ? RenameResult::Done
                                                                              : RenameResult::Failed;
}

RenameResult RenameNew(const std::wstring& from, const std::wstring& to)
{
    const std::string oldName = NarrowPath(from);
    const std::string newName = NarrowPath(to);
    RenameResult result =
        ResultOf(::renameat2(AT_FDCWD, oldName.c_str(), AT_FDCWD, newName.c_str(), RENAME_NOREPLACE));
    if (result == RenameResult::Failed && (errno == EINVAL || errno == ENOSYS)) {
        result = LinkAndUnlink(oldName, newName);
        if (result == RenameResult::Failed && (errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS)) {
            result = ReserveAndRename(oldName, newName);
        }
    }
    return result;
}

bool SyncDirectoryOf(const std::wstring& path)
{
    const int fd = ::open(DirectoryOf(NarrowPath(path)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    // A file system that cannot flush a directory says EINVAL; there is nothing more to be done then.
    const bool synced = ::fsync(fd) == 0 || errno == EINVAL;
    ::close(fd);
    return synced;
}

bool RemoveFile(const std::wstring& path)
{
    return ::unlink(NarrowPath(path).c_str()) == 0 || errno == ENOENT;
}

} // namespace BSS::HAL
