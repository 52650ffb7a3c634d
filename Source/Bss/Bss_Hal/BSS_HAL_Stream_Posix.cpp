// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// C streams over file descriptors. The descriptor is opened first, so that what it names can be looked at
// before a stream is made of it.
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

static_assert(sizeof(off_t) == 8, "files of any size need 64-bit offsets");

struct OpenMode
{
    const char* name;
    int flags;
    bool truncate;
};

// Truncation is a step of its own, after the file is known to be a regular one.
constexpr OpenMode OPEN_MODES[] = {
    {"rb", O_RDONLY, false},
    {"r+b", O_RDWR, false},
    {"wb", O_WRONLY | O_CREAT, true},
    {"w+b", O_RDWR | O_CREAT, true},
    {"ab", O_WRONLY | O_CREAT | O_APPEND, false},
};

const OpenMode* FindMode(const char* mode) noexcept
{
    const auto* const found =
        std::find_if(std::begin(OPEN_MODES), std::end(OPEN_MODES),
                     [mode](const OpenMode& each) { return std::strcmp(each.name, mode) == 0; });
    return found == std::end(OPEN_MODES) ? nullptr : found;
}

int OpenDescriptor(const char* path, int flags) noexcept
{
    // Non-blocking, so that opening a pipe does not wait for somebody at its other end.
    for (;;) {
        const int fd = ::open(path, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
        if (fd >= 0 || errno != EINTR) return fd;
    }
}

bool PrepareDescriptor(int fd, bool truncate) noexcept
{
    struct stat info = {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) return false;
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) return false;
    // A file that is empty anyway is left alone: once it was truncated, some file systems write all of it to
    // the device when it is closed.
    return !truncate || info.st_size == 0 || ::ftruncate(fd, 0) == 0;
}

std::FILE* StreamOf(int fd, const OpenMode& mode) noexcept
{
    std::FILE* const stream = PrepareDescriptor(fd, mode.truncate) ? ::fdopen(fd, mode.name) : nullptr;
    if (stream == nullptr) ::close(fd);
    return stream;
}

constexpr bool Expressible(std::uint64_t offset) noexcept
{
    return offset <= static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
}

} // namespace

std::FILE* OpenStream(const std::wstring& path, const char* mode) noexcept
try {
    const OpenMode* const known = FindMode(mode);
    const std::string narrow = NarrowPath(path);
    if (known == nullptr || narrow.find('\0') != std::string::npos) return nullptr;
    const int fd = OpenDescriptor(narrow.c_str(), known->flags);
    return fd < 0 ? nullptr : StreamOf(fd, *known);
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool SeekStream(std::FILE* stream, std::uint64_t offset) noexcept
{
    return Expressible(offset) && ::fseeko(stream, static_cast<off_t>(offset), SEEK_SET) == 0;
}

bool TellStream(std::FILE* stream, std::uint64_t& offset) noexcept
{
    const off_t position = ::ftello(stream);
    if (position < 0) return false;
    offset = static_cast<std::uint64_t>(position);
    return true;
}

bool StreamSize(std::FILE* stream, std::uint64_t& size) noexcept
{
    struct stat info = {};
    if (::fstat(::fileno(stream), &info) != 0 || info.st_size < 0) return false;
    size = static_cast<std::uint64_t>(info.st_size);
    return true;
}

bool NextStoredOffset(std::FILE* stream, std::uint64_t from, std::uint64_t& next) noexcept
{
    std::uint64_t size = 0;
    if (!Expressible(from) || !StreamSize(stream, size)) return false;
    const int fd = ::fileno(stream);
    const off_t before = ::lseek(fd, 0, SEEK_CUR);
    if (before < 0) return false;
    const off_t found = ::lseek(fd, static_cast<off_t>(from), SEEK_DATA);
    const bool noMoreData = found < 0 && errno == ENXIO;
    // The C stream remembers where the descriptor stands.
    if (::lseek(fd, before, SEEK_SET) != before || (found < 0 && !noMoreData)) return false;
    next = noMoreData ? std::max(from, size) : static_cast<std::uint64_t>(found);
    return true;
}

bool SyncStream(std::FILE* stream) noexcept
{
    return std::fflush(stream) == 0 && ::fsync(::fileno(stream)) == 0;
}

void StartWriteback(std::FILE* stream, std::uint64_t offset, std::uint64_t bytes) noexcept
{
    static_cast<void>(::sync_file_range(::fileno(stream), static_cast<off_t>(offset),
                                        static_cast<off_t>(bytes), SYNC_FILE_RANGE_WRITE));
}

void AdviseSequential(std::FILE* stream) noexcept
{
    static_cast<void>(::posix_fadvise(::fileno(stream), 0, 0, POSIX_FADV_SEQUENTIAL));
}

} // namespace BSS::HAL
