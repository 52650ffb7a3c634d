// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The write lock is a byte range far beyond any content. Sole use is never granted: every append takes the
// write lock here. All openers share deletion, so that the file can be renamed while it is open.
#include "Bss/Bss_Hal/BSS_HAL_AppendFile.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Windows.h"

#include <algorithm>
#include <new>
#include <utility>

namespace BSS::HAL {

namespace {

constexpr DWORD WRITE_LOCK_HIGH = 0x20000000;
constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD ACCESS = FILE_APPEND_DATA | FILE_WRITE_DATA | GENERIC_READ | SYNCHRONIZE;
constexpr std::size_t LARGEST_WRITE = std::size_t{1} << 30;
constexpr int NAPS_FOR_THE_LOCK = 500;

HANDLE Native(NativeHandleT handle) noexcept
{
    return reinterpret_cast<HANDLE>(handle);
}

OVERLAPPED At(DWORD low, DWORD high) noexcept
{
    OVERLAPPED place = {};
    place.Offset = low;
    place.OffsetHigh = high;
    return place;
}

bool IdentityOf(HANDLE handle, FileIdentity& identity) noexcept
{
    BY_HANDLE_FILE_INFORMATION info = {};
    if (!GetFileInformationByHandle(handle, &info)) return false;
    identity = {info.dwVolumeSerialNumber,
                (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow};
    return true;
}

std::size_t WriteAll(HANDLE handle, const AppendPieceT& piece) noexcept
{
    std::size_t done = 0;
    while (done < piece.count) {
        OVERLAPPED end = At(0xFFFFFFFF, 0xFFFFFFFF); // both halves full: the end of the file at that moment
        DWORD written = 0;
        const auto part = static_cast<DWORD>(std::min(piece.count - done, LARGEST_WRITE));
        if (!WriteFile(handle, piece.data + done, part, &written, &end) || written == 0) break;
        done += written;
    }
    return done;
}

} // namespace

std::unique_ptr<AppendFileC> AppendFileC::Open(const std::wstring& path)
{
    if (path.find(L'\0') != std::wstring::npos) return nullptr;
    const HANDLE handle = CreateFileW(LongPath(path).c_str(), ACCESS, SHARE_ALL, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    FileIdentity identity;
    const bool regular = GetFileType(handle) == FILE_TYPE_DISK && IdentityOf(handle, identity);
    AppendFileC* const file =
        regular ? new (std::nothrow) AppendFileC(reinterpret_cast<NativeHandleT>(handle), identity) : nullptr;
    if (file == nullptr) CloseHandle(handle);
    return std::unique_ptr<AppendFileC>(file);
}

AppendFileC::~AppendFileC()
{
    static_cast<void>(Close());
}

bool AppendFileC::Close() noexcept
{
    const NativeHandleT handle = std::exchange(m_handle, NO_HANDLE);
    return handle == NO_HANDLE || CloseNativeHandle(handle);
}

std::size_t AppendFileC::Append(std::span<const AppendPieceT> pieces, std::uint64_t) noexcept
{
    if (pieces.size() == 1) return WriteAll(Native(m_handle), pieces.front());
    // In one piece, or the process could end between two of them.
    std::size_t count = 0;
    for (const AppendPieceT& piece : pieces)
        count += piece.count;
    const std::unique_ptr<char[]> whole(new (std::nothrow) char[count]);
    if (whole == nullptr) return 0;
    char* end = whole.get();
    for (const AppendPieceT& piece : pieces)
        end = std::copy_n(piece.data, piece.count, end);
    return WriteAll(Native(m_handle), {whole.get(), count});
}

bool AppendFileC::GetStatus(FileStatus& status) const noexcept
{
    FILE_STANDARD_INFO info = {};
    if (!GetFileInformationByHandleEx(Native(m_handle), FileStandardInfo, &info, sizeof info)) return false;
    status.sizeBytes = static_cast<std::uint64_t>(info.EndOfFile.QuadPart);
    status.removed = info.DeletePending || info.NumberOfLinks == 0;
    return true;
}

std::size_t AppendFileC::ReadAt(std::uint64_t offsetBytes, char* data, std::size_t count) const noexcept
{
    OVERLAPPED place = At(static_cast<DWORD>(offsetBytes), static_cast<DWORD>(offsetBytes >> 32));
    DWORD read = 0;
    const auto wanted = static_cast<DWORD>(std::min(count, LARGEST_WRITE));
    return ReadFile(Native(m_handle), data, wanted, &read, &place) ? read : 0;
}

bool AppendFileC::Truncate(std::uint64_t sizeBytes) noexcept
{
    FILE_END_OF_FILE_INFO info = {};
    info.EndOfFile.QuadPart = static_cast<LONGLONG>(sizeBytes);
    return SetFileInformationByHandle(Native(m_handle), FileEndOfFileInfo, &info, sizeof info) != 0;
}

bool AppendFileC::Sync() noexcept
{
    return FlushFileBuffers(Native(m_handle)) != 0;
}

AppendLock AppendFileC::Lock() noexcept
{
    for (int round = 0; round < NAPS_FOR_THE_LOCK; ++round) {
        OVERLAPPED place = At(0, WRITE_LOCK_HIGH);
        const DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        if (LockFileEx(Native(m_handle), flags, 0, 1, 0, &place)) return AppendLock::Taken;
        const DWORD error = GetLastError();
        if (error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING) return AppendLock::None;
        Sleep(round < NAPS_FOR_THE_LOCK / 2 ? 0 : 1);
    }
    return AppendLock::Busy;
}

void AppendFileC::Unlock() noexcept
{
    OVERLAPPED place = At(0, WRITE_LOCK_HIGH);
    UnlockFileEx(Native(m_handle), 0, 1, 0, &place);
}

bool AppendFileC::TakeSoleUse() noexcept
{
    return false;
}

void AppendFileC::GiveUpSoleUse() noexcept
{
    // Nobody has it here.
}

bool AppendFileC::OthersPresent() const noexcept
{
    return true;
}

bool AppendFileC::OtherHasSoleUse() const noexcept
{
    return false;
}

bool IdentityOfPath(const std::wstring& path, FileIdentity& identity)
{
    const HANDLE handle = CreateFileW(LongPath(path).c_str(), FILE_READ_ATTRIBUTES, SHARE_ALL, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    const bool known = IdentityOf(handle, identity);
    CloseHandle(handle);
    return known;
}

} // namespace BSS::HAL
