// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Two ways to write. Alone: sole use of the file has been taken, so its size is known and a write is one call
// to the system. Locked: others have the file open, so the write lock is taken, and name, size and end of the
// file are looked at before each write. Whether others have come, and whether the file is still there, is
// looked at only now and then; until then the lines that were handed over stay in the buffer, to be written
// again if the file turns out to be gone.
#include "Bss/Bss_Dbg/BSS_DBG_LogFile.h"

#include "Bss/Bss_Dbg/BSS_DBG_LogFileName.h"
#include "Bss/Bss_Dbg/BSS_DBG_LogLine.h"
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"
#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_Process.h"
#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Os/BSS_OS_PathMap.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <limits>
#include <thread>
#include <utility>

namespace BSS::DBG {

namespace {

constexpr std::uint64_t HAND_OVER_EVERY_MS = 100;
constexpr std::uint64_t VERIFY_EVERY_MS = 20;
constexpr std::uint64_t CHECK_PATH_EVERY_MS = 1000;
constexpr std::uint64_t SHARED_FOR_MS = 1000; // how long others are expected back
constexpr int MAX_WAIT_FOR_SOLE_USER_MS = 50;
constexpr auto PATIENCE = std::chrono::seconds(1);
constexpr std::uint64_t NO_LIMIT = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t LONGEST_FRAGMENT = 16384 + LogPagesC::MAX_PAGE_BYTES; // a line, and what fills it up

constexpr std::string_view CUT_MARK = " (cut)\n";

// How much of the text is whole lines and not longer than `most`.
std::size_t WholeLines(std::string_view text, std::uint64_t most) noexcept
{
    if (text.size() <= most) return text.size();
    const std::size_t end = text.substr(0, most).rfind('\n');
    return end == std::string_view::npos ? 0 : end + 1;
}

std::uint64_t Elapsed(std::uint64_t nowMs, std::uint64_t thenMs) noexcept
{
    return nowMs > thenMs ? nowMs - thenMs : thenMs - nowMs;
}

std::uint64_t Milliseconds(const HAL::WallTime& time) noexcept
{
    return static_cast<std::uint64_t>(time.seconds) * 1000 + static_cast<std::uint64_t>(time.millisecond);
}

// How long something may be tried without getting anywhere.
class Patience
{
public:
    bool IsOver()
    {
        const auto now = std::chrono::steady_clock::now();
        if (m_end == NOT_YET) m_end = now + PATIENCE;
        return now >= m_end;
    }
    void Renew() noexcept { m_end = NOT_YET; }

private:
    using TimeT = std::chrono::steady_clock::time_point;
    static constexpr TimeT NOT_YET = TimeT::max();

    TimeT m_end = NOT_YET; // from the first time it is asked for
};

class WriteLock
{
public:
    explicit WriteLock(HAL::AppendFileC& file) noexcept : m_file(file), m_state(file.Lock()) {}
    ~WriteLock()
    {
        if (m_state == HAL::AppendLock::Taken) m_file.Unlock();
    }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

    bool Busy() const noexcept { return m_state == HAL::AppendLock::Busy; }
    HAL::AppendLock State() const noexcept { return m_state; }

private:
    HAL::AppendFileC& m_file;
    const HAL::AppendLock m_state;
};

} // namespace

DbgLogFileC::DbgLogFileC(std::wstring name, std::uint64_t limitBytes, unsigned nOlderFiles)
    : m_name(std::move(name)), m_limitBytes(limitBytes), m_nOlderFiles(nOlderFiles),
      m_forkGeneration(HAL::ForkGeneration())
{}

DbgLogFileC::~DbgLogFileC()
{
    try {
        static_cast<void>(finish());
    } catch (const std::exception&) {
        // Nobody is left to tell.
    }
}

bool DbgLogFileC::finish()
{
    const HAL::NoCancellation undisturbed; // destructors come here too
    m_nowMs = Milliseconds(HAL::WallTimeNow());
    if (m_forkGeneration == HAL::ForkGeneration()) {
        tellLosses();
        if (m_used > 0) static_cast<void>(handOver() && verify());
        if (pending() > 0) static_cast<void>(handOver()); // the file had gone
    } else {
        m_used = m_written = 0; // the parent's lines
    }
    close();
    const bool whole = pending() == 0 && m_nLost == 0;
    m_used = m_written = 0;
    return !std::exchange(m_bCloseRefused, false) && whole;
}

std::wstring DbgLogFileC::path() const
{
    const std::wstring directory = OS::LogDirectory();
    return directory.empty() ? directory : HAL::JoinPath(directory, m_name);
}

bool DbgLogFileC::append(std::string_view lines, const HAL::WallTime& now)
{
    m_nowMs = Milliseconds(now);
    if (takesAtOnce(lines.size())) {
        put(lines);
        return true;
    }
    const bool there = prepare();
    while (there && !lines.empty()) {
        std::size_t part = WholeLines(lines, BUFFER_BYTES);
        if (part == 0) part = std::min(lines.size(), BUFFER_BYTES);
        if (!take(lines.substr(0, part))) break;
        lines.remove_prefix(part);
    }
    m_nLost += static_cast<std::uint64_t>(std::count(lines.begin(), lines.end(), '\n'));
    const bool due = Elapsed(m_nowMs, m_handedOverMs) >= HAND_OVER_EVERY_MS;
    const bool handedOver = !there || !due || handOver();
    return !std::exchange(m_bCloseRefused, false) && handedOver && lines.empty();
}

// Whether the lines go to the buffer and nothing else is to be done: nothing has changed, nothing was lost
// and nothing is due.
bool DbgLogFileC::takesAtOnce(std::size_t bytes) const
{
    return m_buffer && bytes <= BUFFER_BYTES - m_used && m_nLost == 0 && !m_bCloseRefused &&
           !m_path.empty() && Elapsed(m_nowMs, m_handedOverMs) < HAND_OVER_EVERY_MS &&
           m_pathVersion == OS::LogDirectoryVersion() && m_forkGeneration == HAL::ForkGeneration();
}

// Where the lines go from now on. What waits for another place goes there first.
bool DbgLogFileC::prepare()
{
    if (m_forkGeneration != HAL::ForkGeneration()) {
        m_forkGeneration = HAL::ForkGeneration();
        m_used = m_written = 0; // the parent's lines
        close();
    }
    if (m_path.empty() || m_pathVersion != OS::LogDirectoryVersion()) {
        if (pending() > 0) static_cast<void>(handOver());
        close();
        forgetWritten();
        m_handedOverMs = 0;
        m_pathVersion = OS::LogDirectoryVersion();
        m_directory = OS::LogDirectory();
        m_path = m_directory.empty() ? m_directory : HAL::JoinPath(m_directory, m_name);
    }
    if (!m_buffer) m_buffer = std::make_unique_for_overwrite<char[]>(BUFFER_BYTES);
    return !m_path.empty();
}

// Lines and what tells of lost ones go together: a line that found room only beside the other would be lost
// though the file takes lines again.
bool DbgLogFileC::take(std::string_view lines)
{
    std::string losses;
    if (m_nLost > 0) losses = UTI::Format("(%I64u lines could not be written and are lost)\n", m_nLost);
    if (!makeRoom(std::min(losses.size() + lines.size(), BUFFER_BYTES))) return false;
    put(losses);
    m_nLost = 0;
    if (!makeRoom(lines.size())) return false;
    put(lines);
    return true;
}

// Where no other line comes that would tell of them.
void DbgLogFileC::tellLosses()
{
    if (m_nLost > 0 && m_buffer) static_cast<void>(take({}));
}

// Twice, if the file turns out to be gone.
bool DbgLogFileC::makeRoom(std::size_t bytes)
{
    for (int i = 0; i < 2 && bytes > BUFFER_BYTES - m_used && handOver() && verify() && pending() > 0; ++i) {
    }
    return bytes <= BUFFER_BYTES - m_used;
}

void DbgLogFileC::put(std::string_view text) noexcept
{
    if (!text.empty()) std::memcpy(m_buffer.get() + m_used, text.data(), text.size());
    m_used += text.size();
}

bool DbgLogFileC::handOver()
{
    if (pending() == 0) return true;
    m_handedOverMs = m_nowMs;
    if (!m_file && !open()) return false;
    if (Elapsed(m_handedOverMs, m_verifiedMs) >= VERIFY_EVERY_MS && !verify()) return false;
    return m_sole ? writeAlone() : writeLocked();
}

bool DbgLogFileC::flush()
{
    m_nowMs = Milliseconds(HAL::WallTimeNow());
    if (!m_path.empty() && !prepare()) return false;
    tellLosses();
    if (!m_file && pending() == 0) return !std::exchange(m_bCloseRefused, false);
    // Twice: lines that went to a file which has been taken away are written again.
    const bool there = handOver() && verify() && handOver() && verify();
    return !std::exchange(m_bCloseRefused, false) && there && m_file && m_file->Sync();
}

bool DbgLogFileC::open()
{
    m_file = HAL::AppendFileC::Open(m_path);
    // The directory may be missing yet, or have been taken away.
    if (!m_file && HAL::MakePrivateDirectory(m_directory)) m_file = HAL::AppendFileC::Open(m_path);
    if (!m_file) return false;
    const std::uint64_t now = m_nowMs;
    m_verifiedMs = m_pathCheckedMs = now;
    if (m_file->OthersPresent()) {
        m_othersSeenMs = now;
        awaitOthers();
    } else if (m_othersSeenMs == 0 || Elapsed(now, m_othersSeenMs) >= SHARED_FOR_MS) {
        m_sole = m_file->TakeSoleUse();
    }
    const WriteLock lock(*m_file);
    HAL::FileStatus status;
    m_sizeBytes = m_file->GetStatus(status) ? status.sizeBytes : 0;
    if (!lock.Busy()) repairEnd(m_sizeBytes);
    return true;
}

void DbgLogFileC::close() noexcept
{
    if (m_file && !m_file->Close()) m_bCloseRefused = true;
    m_file.reset();
    m_sole = false;
}

// One that writes alone looks around before its next write, or has done so a moment ago: it will see us.
void DbgLogFileC::awaitOthers() const
{
    for (int i = 0; i < MAX_WAIT_FOR_SOLE_USER_MS && m_file->OtherHasSoleUse(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Looks at the file: whether it is still there, whether it is still the one of that name, and who else is.
// True when there is a file to write to.
bool DbgLogFileC::verify()
{
    HAL::FileStatus status;
    const bool told = m_file && m_file->GetStatus(status);
    if (!told || status.removed) {
        close();
        if (!told) forgetWritten();
        m_written = 0; // gone with the file: all of it waits again
        return open();
    }
    forgetWritten();
    m_verifiedMs = m_nowMs;
    if (Elapsed(m_verifiedMs, m_pathCheckedMs) >= CHECK_PATH_EVERY_MS && !reopenIfReplaced()) return false;
    const bool others = m_file->OthersPresent();
    if (others) m_othersSeenMs = m_verifiedMs;
    if (others && m_sole) {
        m_file->GiveUpSoleUse();
        m_sole = false;
    }
    if (!others && !m_sole && Elapsed(m_verifiedMs, m_othersSeenMs) >= SHARED_FOR_MS)
        m_sole = m_file->TakeSoleUse();
    return !m_sole || lookAtTheEnd();
}

// For the sole user. Somebody may have been there while we wrote nothing, and have left the beginning of a
// line behind, or emptied the file.
bool DbgLogFileC::lookAtTheEnd()
{
    HAL::FileStatus status;
    if (!m_file->GetStatus(status)) return false;
    if (status.sizeBytes == m_sizeBytes) return true;
    const WriteLock lock(*m_file); // of somebody who has come this very moment
    if (!m_file->GetStatus(status)) return false;
    m_sizeBytes = status.sizeBytes;
    if (!lock.Busy()) repairEnd(status.sizeBytes);
    return true;
}

bool DbgLogFileC::reopenIfReplaced()
{
    m_pathCheckedMs = m_nowMs;
    HAL::FileIdentity now;
    if (HAL::IdentityOfPath(m_path, now) && now == m_file->GetIdentity()) return true;
    close();
    return open();
}

std::string_view DbgLogFileC::waiting() const noexcept
{
    return {m_buffer.get() + m_written, pending()};
}

// For bytes in the file.
std::uint64_t DbgLogFileC::room() const noexcept
{
    if (m_limitBytes == 0) return NO_LIMIT;
    return m_limitBytes > m_sizeBytes ? m_limitBytes - m_sizeBytes : 0;
}

std::size_t DbgLogFileC::pageBytes() const noexcept
{
    return m_bFilling ? HAL::AppendFileC::STOPS_AT_BYTES : 0;
}

void DbgLogFileC::forgetWritten() noexcept
{
    if (pending() > 0) std::memmove(m_buffer.get(), m_buffer.get() + m_written, pending());
    m_used = pending();
    m_written = 0;
}

bool DbgLogFileC::writeAlone()
{
    if (pending() <= room() && LogPagesC::CanStandAsItIs(pending(), m_sizeBytes, pageBytes())) {
        const HAL::AppendPieceT piece{waiting().data(), pending()};
        const std::size_t taken = m_file->Append({&piece, 1}, m_sizeBytes);
        const std::size_t whole = WholeLines(waiting(), taken);
        return settle(taken, {whole, whole}, piece.count, true);
    }
    const LogPagesC pages(waiting(), m_sizeBytes, pageBytes(), room());
    return pages.textBytes() == pending() ? writePages(pages, true) : writeLocked();
}

// When many write much, the file may be full and another one each time it is our turn: what counts then is
// time, not how often that happens.
bool DbgLogFileC::writeLocked()
{
    Patience patience;
    while (pending() > 0) {
        const std::size_t before = pending();
        if (!m_file && !open()) return false;
        const RoundResult result = writeLockedOnce();
        if (result == RoundResult::Failed) return false;
        if (result == RoundResult::Rotated) letOthersIn();
        if (result != RoundResult::Done) close();
        if (pending() < before) {
            patience.Renew();
        } else if (patience.IsOver()) {
            return false;
        }
    }
    return true;
}

DbgLogFileC::RoundResult DbgLogFileC::writeLockedOnce()
{
    const WriteLock lock(*m_file);
    HAL::FileIdentity named;
    HAL::FileStatus status;
    const bool same = HAL::IdentityOfPath(m_path, named) && named == m_file->GetIdentity();
    if (!m_file->GetStatus(status)) return RoundResult::Failed;
    if (!same) {
        if (status.removed) m_written = 0;    // gone with the file: all of it waits again
        if (!status.removed) forgetWritten(); // it lives on under another name
        return RoundResult::FileIsAnother;
    }
    const bool strange = status.sizeBytes != m_sizeBytes;
    m_sizeBytes = status.sizeBytes;
    if (strange && !lock.Busy()) repairEnd(status.sizeBytes);
    if (!writeOnce(lock.State())) return RoundResult::Failed;
    forgetWritten(); // the file has just been seen
    return pending() > 0 && m_sizeBytes == 0 ? RoundResult::Rotated : RoundResult::Done;
}

// Who waits for the file that has just become an older one comes too late for the new one, if we go on at
// once.
void DbgLogFileC::letOthersIn() const
{
    if (m_file->OthersPresent()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Writes what fits, or makes room for it: then the size is 0 and the file has to be opened anew. While
// somebody keeps the lock the file only grows.
bool DbgLogFileC::writeOnce(HAL::AppendLock lock)
{
    const bool ours = lock == HAL::AppendLock::Taken;
    const std::uint64_t most = lock == HAL::AppendLock::Busy ? NO_LIMIT : room();
    const LogPagesC pages(waiting(), m_sizeBytes, pageBytes(), most);
    if (pages.textBytes() > 0) return writePages(pages, ours);
    if (m_sizeBytes > 0) return rotate();
    return writeCut(waiting().substr(0, std::min(waiting().find('\n'), pending() - 1) + 1), ours);
}

// A line that is longer than any file may be: what fits, and a mark. Lost, where not even the mark has room.
bool DbgLogFileC::writeCut(std::string_view line, bool ours)
{
    const auto most = static_cast<std::size_t>(m_limitBytes);
    if (most <= CUT_MARK.size()) {
        ++m_nLost;
        m_written += line.size();
        return true;
    }
    const std::string cut =
        std::string(line.substr(0, WholeCharacters(line, most - CUT_MARK.size()))).append(CUT_MARK);
    const HAL::AppendPieceT piece{cut.data(), cut.size()};
    if (m_file->Append({&piece, 1}, m_sizeBytes) < cut.size()) {
        if (ours) static_cast<void>(m_file->Truncate(m_sizeBytes));
        return false;
    }
    m_sizeBytes += cut.size();
    m_written += line.size();
    return true;
}

bool DbgLogFileC::writePages(const LogPagesC& pages, bool ours)
{
    const std::size_t taken = m_file->Append(pages.pieces(), m_sizeBytes);
    return settle(taken, pages.wholeLinesWithin(taken), pages.textBytes(), ours);
}

// After a write of that much text of which the system has taken `taken` bytes. If that is only a part of it,
// a line that was begun is taken back: always when nobody else may write now, else when nobody has.
bool DbgLogFileC::settle(std::size_t taken, const LogPagesC::ExtentT& whole, std::size_t textBytes, bool ours)
{
    HAL::FileStatus status;
    if (whole.fileBytes < taken && m_file->GetStatus(status) && status.sizeBytes >= taken &&
        (ours || status.sizeBytes == m_sizeBytes + taken)) {
        m_sizeBytes = status.sizeBytes - taken; // somebody may have emptied the file to make room
        if (!m_file->Truncate(m_sizeBytes + whole.fileBytes)) m_verifiedMs = 0; // to be looked at before long
    }
    m_sizeBytes += whole.fileBytes;
    m_written += whole.textBytes;
    return whole.textBytes == textBytes;
}

// Gives every file the next number. The current one is the last to be renamed, so whoever comes in between
// still finds it, and waits for its lock.
bool DbgLogFileC::rotate()
{
    if (!RotateLogFiles(m_path, m_nOlderFiles)) return false;
    forgetWritten();
    m_sizeBytes = 0;
    return true;
}

// Removes the beginning of a line that somebody left who died in the middle of a write. What is too long for
// that was not ours, and is ended instead.
void DbgLogFileC::repairEnd(std::uint64_t sizeBytes)
{
    char last = '\n';
    if (sizeBytes == 0 || m_file->ReadAt(sizeBytes - 1, &last, 1) != 1 || last == '\n') return;
    const std::size_t length = static_cast<std::size_t>(std::min<std::uint64_t>(sizeBytes, LONGEST_FRAGMENT));
    std::string end(length, '\0');
    if (m_file->ReadAt(sizeBytes - length, end.data(), length) != length) return;
    const std::size_t lineEnd = end.rfind('\n');
    if (lineEnd == std::string::npos && sizeBytes > length) {
        const HAL::AppendPieceT piece{"\n", 1};
        m_sizeBytes = sizeBytes + m_file->Append({&piece, 1}, sizeBytes);
        return;
    }
    const std::size_t fragment = length - (lineEnd == std::string::npos ? 0 : lineEnd + 1);
    if (m_file->Truncate(sizeBytes - fragment)) m_sizeBytes = sizeBytes - fragment;
}

} // namespace BSS::DBG
