// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A file that several processes append to. Each append lands at the file's end of that moment, whoever else
// writes. Beside the bytes a file has three locks, all of them released by the system when their holder dies:
// the write lock, which one opener holds for a short while; presence, which every opener has from the start;
// and sole use, which one opener may take to say that it writes without the write lock. Knows nothing of
// lines. An object belongs to one thread at a time; two objects on one file, in one process or in two, are
// strangers.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Handle.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace BSS::HAL {

/// Which file a name or an open file stands for.
struct FileIdentity
{
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
    bool operator==(const FileIdentity&) const = default;
};

struct FileStatus
{
    std::uint64_t sizeBytes = 0;
    bool removed = false; ///< no name leads to the file any more
};

/// A part of what is to be appended. Without initial values: rows of them are made for every write.
struct AppendPieceT
{
    const char* data;
    std::size_t count;
};

enum class AppendLock
{
    Taken,
    Busy,
    None
};

class AppendFileC
{
public:
    /// Opens a regular file, or makes it. Null when that fails, and for anything that is no regular file. A
    /// child process does not inherit it.
    static std::unique_ptr<AppendFileC> Open(const std::wstring& path);

    /// Closes, if Close() has not, and tells nobody how that went.
    ~AppendFileC();
    AppendFileC(const AppendFileC&) = delete;
    AppendFileC& operator=(const AppendFileC&) = delete;

    /// Closes the file; its locks go with it. False when the system refuses, or says only now that it has
    /// lost what it was given. For the last call on the object.
    [[nodiscard]] bool Close() noexcept;

    /// Where the system may stop an append when it kills the process: in the file, at multiples of this many
    /// bytes. Linux looks for a signal that kills between two pages of the file, the smallest of which have
    /// this size; what Windows does is not documented.
    static constexpr std::size_t STOPS_AT_BYTES = 4096;

    /// So many pieces go to the system in one call.
    static constexpr std::size_t MOST_PIECES = 320;

    /// Appends the pieces one behind the other, as if they were one, and returns how many bytes were taken:
    /// fewer than there are when the device is full, or the file as large as the process may make files; no
    /// signal comes of that if the process had its limit when the file was opened or GetStatus was last
    /// called. `endBytes` is where the file ends as far as the caller knows; the system knows better.
    std::size_t Append(std::span<const AppendPieceT> pieces, std::uint64_t endBytes) noexcept;

    /// Size, and whether the file still has a name. False when the system does not tell, or it is another
    /// file that stands there, because somebody closed what is not theirs.
    [[nodiscard]] bool GetStatus(FileStatus& status) const noexcept;

    FileIdentity GetIdentity() const noexcept { return m_identity; }

    /// Reads bytes at an offset; returns how many there were, 0 also when the file may not be read.
    std::size_t ReadAt(std::uint64_t offsetBytes, char* data, std::size_t count) const noexcept;

    /// Cuts the file off. Only for a holder of the write lock or of sole use.
    bool Truncate(std::uint64_t sizeBytes) noexcept;

    /// Puts everything on the device.
    [[nodiscard]] bool Sync() noexcept;

    /// Takes the write lock, unless somebody keeps it for long. Nobody waits for ever: the answer is Busy
    /// after about half a second. None: the file system has no locks.
    [[nodiscard]] AppendLock Lock() noexcept;
    void Unlock() noexcept;

    /// Takes sole use if nobody else has the file open. Where that cannot be known the answer is false.
    [[nodiscard]] bool TakeSoleUse() noexcept;
    void GiveUpSoleUse() noexcept;

    /// Whether somebody else has the file open; true where that cannot be known.
    bool OthersPresent() const noexcept;

    /// Whether somebody else has sole use.
    bool OtherHasSoleUse() const noexcept;

private:
    AppendFileC(NativeHandleT handle, const FileIdentity& identity) noexcept
        : m_handle(handle), m_identity(identity)
    {}

    NativeHandleT m_handle;
    const FileIdentity m_identity;
    [[maybe_unused]] mutable bool m_stranger = false; // the handle stands for another file
    [[maybe_unused]] mutable bool m_limited = true;   // the system may answer a write by a signal
};

/// What the name stands for now. False when there is no such file.
[[nodiscard]] bool IdentityOfPath(const std::wstring& path, FileIdentity& identity);

} // namespace BSS::HAL
