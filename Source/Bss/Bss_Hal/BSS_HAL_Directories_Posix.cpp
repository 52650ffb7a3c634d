// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The usual places of a Linux desktop, found without trusting the environment of a program that runs with
// more rights than its caller.
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace BSS::HAL {

namespace {

std::string AbsoluteFromEnvironment(const char* name)
{
    const char* const value = ::secure_getenv(name);
    return value != nullptr && value[0] == '/' ? value : "";
}

std::string HomeDirectory()
{
    std::string home = AbsoluteFromEnvironment("HOME");
    if (!home.empty()) return home;
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    const int failed = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return failed == 0 && found != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

// `variable` if it is set, else `fallback` under the home directory; empty when there is no home either.
std::string BaseDirectory(const char* variable, const char* fallback)
{
    std::string base = AbsoluteFromEnvironment(variable);
    if (!base.empty()) return base;
    const std::string home = HomeDirectory();
    return home.empty() ? home : home + fallback;
}

bool IsDirectory(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool MakeDirectories(const std::string& path)
{
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        static_cast<void>(::mkdir(path.substr(0, end).c_str(), 0700));
    }
    static_cast<void>(::mkdir(path.c_str(), 0700));
    // Asking what is there now is the one answer that holds whatever each step said.
    return IsDirectory(path);
}

bool IsWritableDirectory(const std::string& path)
{
    return MakeDirectories(path) && ::faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

// The temporary directory is everybody's: a directory there is used only if it is this user's own and closed
// to others, so that nobody can have laid it out in advance.
std::string PrivateTemporaryDirectory()
{
    std::string path = AbsoluteFromEnvironment("TMPDIR");
    if (path.empty()) path = "/tmp";
    path += "/scanreader-" + std::to_string(::geteuid());
    static_cast<void>(::mkdir(path.c_str(), 0700));
    struct stat info = {};
    const bool known = ::lstat(path.c_str(), &info) == 0;
    const bool ours =
        known && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid() && (info.st_mode & 077) == 0;
    return ours ? path : "";
}

std::string NarrowLogDirectory()
{
    const std::string wanted = AbsoluteFromEnvironment("SCANREADER_LOG_DIR");
    if (!wanted.empty()) {
        static_cast<void>(MakeDirectories(wanted));
        return wanted;
    }
    const std::string base = BaseDirectory("XDG_STATE_HOME", "/.local/state");
    const std::string usual = base + "/scanreader/log";
    return !base.empty() && IsWritableDirectory(usual) ? usual : PrivateTemporaryDirectory();
}

} // namespace

std::wstring UserLogDirectory()
{
    return WidePath(NarrowLogDirectory());
}

std::wstring UserConfigDirectory()
{
    const std::string wanted = AbsoluteFromEnvironment("SCANREADER_CONFIG_DIR");
    if (!wanted.empty()) return WidePath(wanted);
    const std::string base = BaseDirectory("XDG_CONFIG_HOME", "/.config");
    return base.empty() ? std::wstring() : WidePath(base + "/scanreader");
}

bool MakePrivateDirectory(const std::wstring& path)
{
    return MakeDirectories(NarrowPath(path));
}

} // namespace BSS::HAL
