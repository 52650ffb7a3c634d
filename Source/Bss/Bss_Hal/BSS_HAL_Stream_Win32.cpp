// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// C streams over the C runtime's descriptors. The descriptor is opened first, so that what it names can be
// looked at before a stream is made of it.
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <io.h>
#include <iterator>
#include <limits>
#include <new>
#include <share.h>
#include <sys/stat.h>
#include <winioctl.h>

namespace BSS::HAL {

namespace {

struct OpenMode
{
    const char* name;
    int flags;
    bool truncate;
};

// Truncation is a step of its own, after the file is known to be a regular one.
constexpr OpenMode OPEN_MODES[] = {
    {"rb", _O_RDONLY, false},
    {"r+b", _O_RDWR, false},
    {"wb", _O_WRONLY | _O_CREAT, true},
    {"w+b", _O_RDWR | _O_CREAT, true},
    {"ab", _O_WRONLY | _O_CREAT | _O_APPEND, false},
};

const OpenMode* FindMode(const char* mode) noexcept
{
    const auto* const found =
        std::find_if(std::begin(OPEN_MODES), std::end(OPEN_MODES),
                     [mode](const OpenMode& each) { return std::strcmp(each.name, mode) == 0; });
    return found == std::end(OPEN_MODES) ? nullptr : found;
}

HANDLE HandleOf(int fd) noexcept
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(fd));
}

HANDLE HandleOf(std::FILE* stream) noexcept
{
    return HandleOf(_fileno(stream));
}

std::FILE* StreamOf(int fd, const OpenMode& mode) noexcept
{
    const bool regular = GetFileType(HandleOf(fd)) == FILE_TYPE_DISK;
    const bool ready = regular && (!mode.truncate || _chsize_s(fd, 0) == 0);
    std::FILE* const stream = ready ? _fdopen(fd, mode.name) : nullptr;
    if (stream == nullptr) _close(fd);
    return stream;
}

constexpr bool Expressible(std::uint64_t offset) noexcept
{
    return offset <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

} // namespace

std::FILE* OpenStream(const std::wstring& path, const char* mode) noexcept
try {
    const OpenMode* const known = FindMode(mode);
    if (known == nullptr || path.find(L'\0') != std::wstring::npos) return nullptr;
    int fd = -1;
    const int flags = known->flags | _O_BINARY | _O_NOINHERIT;
    if (_wsopen_s(&fd, LongPath(path).c_str(), flags, _SH_DENYNO, _S_IREAD | _S_IWRITE) != 0) return nullptr;
    return StreamOf(fd, *known);
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool SeekStream(std::FILE* stream, std::uint64_t offset) noexcept
{
    return Expressible(offset) && _fseeki64(stream, static_cast<std::int64_t>(offset), SEEK_SET) == 0;
}

bool TellStream(std::FILE* stream, std::uint64_t& offset) noexcept
{
    const std::int64_t position = _ftelli64(stream);
    if (position < 0) return false;
    offset = static_cast<std::uint64_t>(position);
    return true;
}

bool StreamSize(std::FILE* stream, std::uint64_t& size) noexcept
{
    LARGE_INTEGER bytes = {};
    if (!GetFileSizeEx(HandleOf(stream), &bytes) || bytes.QuadPart < 0) return false;
    size = static_cast<std::uint64_t>(bytes.QuadPart);
    return true;
}

bool NextStoredOffset(std::FILE* stream, std::uint64_t from, std::uint64_t& next) noexcept
{
    std::uint64_t size = 0;
    if (!Expressible(from) || !StreamSize(stream, size)) return false;
    next = std::max(from, size);
    if (from >= size) return true;
    FILE_ALLOCATED_RANGE_BUFFER asked = {};
    asked.FileOffset.QuadPart = static_cast<LONGLONG>(from);
    asked.Length.QuadPart = static_cast<LONGLONG>(size - from);
    FILE_ALLOCATED_RANGE_BUFFER first = {};
    DWORD returned = 0;
    const BOOL complete = DeviceIoControl(HandleOf(stream), FSCTL_QUERY_ALLOCATED_RANGES, &asked,
                                          sizeof asked, &first, sizeof first, &returned, nullptr);
    // More ranges than fit is no failure: only the first one is wanted.
    if (!complete && GetLastError() != ERROR_MORE_DATA) return false;
    if (returned >= sizeof first)
        next = std::max(from, static_cast<std::uint64_t>(first.FileOffset.QuadPart));
    return true;
}

bool SyncStream(std::FILE* stream) noexcept
{
    return std::fflush(stream) == 0 && FlushFileBuffers(HandleOf(stream)) != 0;
}

void StartWriteback(std::FILE*, std::uint64_t, std::uint64_t) noexcept
{
    // The system knows no such call; its lazy writer begins within a second by itself.
}

void AdviseSequential(std::FILE*) noexcept
{
    // The system takes this hint only when a file is opened, and finds sequential reading out by itself.
}

} // namespace BSS::HAL
