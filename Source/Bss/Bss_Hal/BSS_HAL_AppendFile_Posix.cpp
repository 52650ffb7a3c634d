// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The write lock is the whole-file lock of the open file. Presence and sole use are byte-range locks of the
// open file, far beyond any content: everybody shares the one, and the other is exclusive.
#include "Bss/Bss_Hal/BSS_HAL_AppendFile.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <new>
#include <sched.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace BSS::HAL {

namespace {

constexpr off_t PRESENCE = off_t{1} << 61;
constexpr off_t SOLE_USE = PRESENCE + 1;
constexpr int YIELDS_FOR_THE_LOCK = 64;
constexpr int NAPS_FOR_THE_LOCK = 1000;
constexpr long NAP_NS = 500'000;

int Descriptor(NativeHandleT handle) noexcept
{
    return static_cast<int>(handle);
}

int OpenDescriptor(const char* path) noexcept
{
    // Non-blocking, so that opening a pipe does not wait for somebody at its other end. Reading is wanted for
    // locks and for a look at the end, and is done without where it is not allowed.
    for (const int access : {O_RDWR, O_WRONLY}) {
        int fd = -1;
        do {
            fd = ::open(path, access | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
        } while (fd < 0 && errno == EINTR);
        if (fd >= 0 || errno != EACCES) return fd;
    }
    return -1;
}

FileIdentity IdentityOf(const struct stat& info) noexcept
{
    return {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino)};
}

struct flock RangeLock(int type, off_t at) noexcept
{
    struct flock lock = {};
    lock.l_type = static_cast<short>(type);
    lock.l_whence = SEEK_SET;
    lock.l_start = at;
    lock.l_len = 1;
    return lock;
}

bool SetRange(NativeHandleT handle, int type, off_t at) noexcept
{
    struct flock lock = RangeLock(type, at);
    return ::fcntl(Descriptor(handle), F_OFD_SETLK, &lock) == 0;
}

// Whether another opener keeps this one from locking; `unknown` where the file system has no such locks.
bool RangeIsTaken(NativeHandleT handle, off_t at, bool unknown) noexcept
{
    struct flock lock = RangeLock(F_WRLCK, at);
    if (::fcntl(Descriptor(handle), F_OFD_GETLK, &lock) != 0) return unknown;
    return lock.l_type != F_UNLCK;
}

void Nap() noexcept
{
    const std::timespec time = {0, NAP_NS};
    static_cast<void>(::nanosleep(&time, nullptr));
}

// Whether the process may only make files of a certain size.
bool HasSizeLimit() noexcept
{
    struct rlimit limit = {};
    return ::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

// By the bare system calls, which are no cancellation points, and at an offset, which saves the lock of the
// file's position. A file that is open for appending takes no notice of the offset; one that has come to
// stand in its place does until GetStatus finds it out, and is at least not hit at its start. The system
// takes the offset of several parts as two longs and puts them together; a single long may hold all of it.
long WriteAtTheEnd(int fd, std::span<const struct iovec> parts, std::uint64_t end) noexcept
{
    return ::syscall(SYS_pwritev, fd, parts.data(), static_cast<long>(parts.size()), static_cast<long>(end),
                     static_cast<long>(end >> 32));
}

long WriteAtTheEnd(int fd, const struct iovec& part, std::uint64_t end) noexcept
{
    if constexpr (sizeof(long) == sizeof end) // a single part is cheaper so
        return ::syscall(SYS_pwrite64, fd, part.iov_base, part.iov_len, static_cast<long>(end));
    return WriteAtTheEnd(fd, {&part, 1}, end);
}

// The system's structure serves reading too and so has no constant pointer.
struct iovec PartOf(const AppendPieceT& piece, std::size_t skipped) noexcept
{
    return {const_cast<char*>(piece.data) + skipped, piece.count - skipped};
}

// Calls until all of it is written, or the system takes no more.
template<typename WriteT>
std::size_t WriteAll(std::size_t count, WriteT&& writeFrom) noexcept
{
    std::size_t done = 0;
    while (done < count) {
        const long written = writeFrom(done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    return done;
}

// What is left of the pieces behind that many bytes, as far as one call takes it.
class LeftOver
{
public:
    LeftOver(std::span<const AppendPieceT> pieces, std::size_t done) noexcept
    {
        for (const AppendPieceT& piece : pieces) {
            const std::size_t skipped = std::min(done, piece.count);
            done -= skipped;
            if (skipped == piece.count) continue;
            if (m_nParts == m_parts.size()) break;
            m_parts[m_nParts++] = PartOf(piece, skipped);
        }
    }
    std::span<const struct iovec> Parts() const noexcept { return {m_parts.data(), m_nParts}; }

private:
    std::array<struct iovec, AppendFileC::MOST_PIECES> m_parts; // the first of them
    std::size_t m_nParts = 0;
};

std::size_t WriteAll(int fd, std::span<const AppendPieceT> pieces, std::uint64_t end) noexcept
{
    if (pieces.size() == 1) // most of the time
        return WriteAll(pieces[0].count, [&](std::size_t done) noexcept {
            return WriteAtTheEnd(fd, PartOf(pieces[0], done), end + done);
        });
    std::size_t count = 0;
    for (const AppendPieceT& piece : pieces)
        count += piece.count;
    return WriteAll(count, [&](std::size_t done) noexcept {
        const LeftOver left(pieces, done);
        const long written = WriteAtTheEnd(fd, left.Parts(), end + done);
        // A sandbox may know the one call and not the other.
        const bool unknown = written < 0 && (errno == ENOSYS || errno == EPERM);
        return unknown ? WriteAtTheEnd(fd, left.Parts().front(), end + done) : written;
    });
}

} // namespace

std::unique_ptr<AppendFileC> AppendFileC::Open(const std::wstring& path)
{
    const std::string narrow = NarrowPath(path);
    if (narrow.find('\0') != std::string::npos) return nullptr;
    const int fd = OpenDescriptor(narrow.c_str());
    if (fd < 0) return nullptr;
    struct stat info = {};
    const bool regular = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    AppendFileC* const file = regular ? new (std::nothrow) AppendFileC(fd, IdentityOf(info)) : nullptr;
    if (file == nullptr) {
        ::close(fd);
        return nullptr;
    }
    static_cast<void>(SetRange(fd, F_RDLCK, PRESENCE));
    file->m_limited = HasSizeLimit();
    return std::unique_ptr<AppendFileC>(file);
}

AppendFileC::~AppendFileC()
{
    static_cast<void>(Close());
}

bool AppendFileC::Close() noexcept
{
    const NoCancellation undisturbed;
    const NativeHandleT handle = std::exchange(m_handle, NO_HANDLE);
    if (m_stranger) return false; // not ours to close
    return handle == NO_HANDLE || CloseNativeHandle(handle);
}

std::size_t AppendFileC::Append(std::span<const AppendPieceT> pieces, std::uint64_t endBytes) noexcept
{
    const int fd = Descriptor(m_handle);
    if (!m_limited) return WriteAll(fd, pieces, endBytes);
    const NoCancellation undisturbed;
    std::size_t done = 0;
    WithoutWriteSignals([&] { done = WriteAll(fd, pieces, endBytes); });
    return done;
}

bool AppendFileC::GetStatus(FileStatus& status) const noexcept
{
    m_limited = HasSizeLimit();
    struct stat info = {};
    if (::fstat(Descriptor(m_handle), &info) != 0) return false;
    m_stranger = IdentityOf(info) != m_identity;
    if (m_stranger) return false;
    status.sizeBytes = static_cast<std::uint64_t>(info.st_size);
    status.removed = info.st_nlink == 0;
    return true;
}

std::size_t AppendFileC::ReadAt(std::uint64_t offsetBytes, char* data, std::size_t count) const noexcept
{
    const NoCancellation undisturbed;
    const ssize_t read = ::pread(Descriptor(m_handle), data, count, static_cast<off_t>(offsetBytes));
    return read < 0 ? 0 : static_cast<std::size_t>(read);
}

bool AppendFileC::Truncate(std::uint64_t sizeBytes) noexcept
{
    return ::ftruncate(Descriptor(m_handle), static_cast<off_t>(sizeBytes)) == 0;
}

bool AppendFileC::Sync() noexcept
{
    const NoCancellation undisturbed;
    return ::fsync(Descriptor(m_handle)) == 0;
}

AppendLock AppendFileC::Lock() noexcept
{
    const NoCancellation undisturbed;
    const int fd = Descriptor(m_handle);
    for (int round = 0; round < YIELDS_FOR_THE_LOCK + NAPS_FOR_THE_LOCK; ++round) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) return AppendLock::Taken;
        if (errno != EWOULDBLOCK && errno != EINTR) return AppendLock::None;
        if (round < YIELDS_FOR_THE_LOCK) {
            static_cast<void>(::sched_yield());
        } else {
            Nap();
        }
    }
    return AppendLock::Busy;
}

void AppendFileC::Unlock() noexcept
{
    static_cast<void>(::flock(Descriptor(m_handle), LOCK_UN));
}

bool AppendFileC::TakeSoleUse() noexcept
{
    // First said, then looked: of two that come at once at least one sees the other.
    if (!SetRange(m_handle, F_WRLCK, SOLE_USE)) return false;
    if (!OthersPresent()) return true;
    GiveUpSoleUse();
    return false;
}

void AppendFileC::GiveUpSoleUse() noexcept
{
    static_cast<void>(SetRange(m_handle, F_UNLCK, SOLE_USE));
}

bool AppendFileC::OthersPresent() const noexcept
{
    return RangeIsTaken(m_handle, PRESENCE, true);
}

bool AppendFileC::OtherHasSoleUse() const noexcept
{
    return RangeIsTaken(m_handle, SOLE_USE, false);
}

bool IdentityOfPath(const std::wstring& path, FileIdentity& identity)
{
    struct stat info = {};
    if (::stat(NarrowPath(path).c_str(), &info) != 0) return false;
    identity = IdentityOf(info);
    return true;
}

} // namespace BSS::HAL
