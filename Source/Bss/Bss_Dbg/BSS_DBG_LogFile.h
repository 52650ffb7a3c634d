// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log file in the log directory that does not grow beyond its limit: when it is full it becomes the newest
// of its numbered older files ("ErrorLog.txt" becomes "ErrorLog.1.txt", that one "ErrorLog.2.txt", and so on)
// and a new one is begun.
//
// Lines wait in a buffer until they are handed over to the system: when the buffer is full, when the last
// time was a tenth of a second ago or more, and when the owner says so. What has been handed over survives
// the death of the process; what has been flushed survives the death of the machine. Only whole lines are
// handed over, and some are filled up with spaces so that a process that is killed in the middle of a write
// leaves whole lines too. Where it could not be so, the beginning of a line is removed by whoever writes to
// the file next. Lines that cannot be handed over, on a full disk for example, are kept for the next time;
// when the buffer is full of those, further lines are counted, and a line tells how many were lost.
//
// Several files, in one process or in many, may bear the same name: their lines do not mix and the limit
// holds. A file or directory that is taken away is made anew. A child process that is forked does not write
// what its parent has still to write. One thread at a time; knows nothing of prefixes or levels.
#pragma once

#include "Bss/Bss_Dbg/BSS_DBG_LogPages.h"
#include "Bss/Bss_Hal/BSS_HAL_AppendFile.h"
#include "Bss/Bss_Hal/BSS_HAL_Clock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace BSS::DBG {

class DbgLogFileC
{
public:
    static constexpr unsigned DEFAULT_OLDER_FILES = 3;

    /// How much waits in memory at most. Memory is taken as it is needed.
    static constexpr std::size_t BUFFER_BYTES = 262144;

    /// `name` is the file's name in the log directory. A limit of 0 bytes is no limit.
    DbgLogFileC(std::wstring name, std::uint64_t limitBytes, unsigned nOlderFiles = DEFAULT_OLDER_FILES);

    /// Does what finish() does, and tells nobody how that went.
    ~DbgLogFileC();
    DbgLogFileC(const DbgLogFileC&) = delete;
    DbgLogFileC& operator=(const DbgLogFileC&) = delete;

    /// Takes whole lines, each ended by "\n". A line that is longer than the limit itself is cut and ends
    /// in " (cut)"; with a limit of so few bytes that this has no room, it is lost and counted. False when
    /// lines are waiting that could not be handed over, or were lost for that reason, and when the system
    /// has refused to close a file that was written before. Throws std::bad_alloc only.
    [[nodiscard]] bool append(std::string_view lines, const HAL::WallTime& now = HAL::WallTimeNow());

    /// Hands over everything now. False when that fails; the lines are kept.
    [[nodiscard]] bool handOver();

    /// Hands over everything, makes sure that the file is still there, and puts it on the device. True also
    /// when there is no file yet.
    [[nodiscard]] bool flush();

    /// Hands over what is left, and closes the file. False when lines are lost by that, or the system refuses
    /// to close. For the last call on the object.
    [[nodiscard]] bool finish();

    void setLimit(std::uint64_t limitBytes) noexcept { m_limitBytes = limitBytes; }

    /// How many older files are kept.
    void setOlderFiles(unsigned nOlderFiles) noexcept { m_nOlderFiles = nOlderFiles; }

    /// Whether lines may be filled up with spaces: without that, a process that is killed may leave the
    /// beginning of a line. They may be unless this is called.
    void setFilling(bool bFilling) noexcept { m_bFilling = bFilling; }

    /// Where the file is, as far as that is known now; empty when there is no log directory.
    std::wstring path() const;

private:
    enum class RoundResult
    {
        Done,
        Rotated,       ///< the file has become an older one
        FileIsAnother, ///< the name stands for another file now, or for none
        Failed
    };

    std::size_t pending() const noexcept { return m_used - m_written; }
    std::string_view waiting() const noexcept;
    std::uint64_t room() const noexcept;
    std::size_t pageBytes() const noexcept;
    bool takesAtOnce(std::size_t bytes) const;
    bool prepare();
    bool take(std::string_view lines);
    void tellLosses();
    bool makeRoom(std::size_t bytes);
    void put(std::string_view text) noexcept;
    bool open();
    void close() noexcept;
    void awaitOthers() const;
    bool verify();
    bool reopenIfReplaced();
    bool lookAtTheEnd();
    void forgetWritten() noexcept;
    bool writeAlone();
    bool writeLocked();
    RoundResult writeLockedOnce();
    void letOthersIn() const;
    bool writeOnce(HAL::AppendLock lock);
    bool writeCut(std::string_view line, bool ours);
    bool writePages(const LogPagesC& pages, bool ours);
    bool settle(std::size_t taken, const LogPagesC::ExtentT& whole, std::size_t textBytes, bool ours);
    bool rotate();
    void repairEnd(std::uint64_t sizeBytes);

    const std::wstring m_name;
    std::uint64_t m_limitBytes;
    unsigned m_nOlderFiles;
    bool m_bFilling = true;
    std::wstring m_directory;
    std::wstring m_path;             // of the file that the waiting lines belong to
    std::uint32_t m_pathVersion = 0; // of the log directory that the path was made with
    std::uint32_t m_forkGeneration = 0;
    std::unique_ptr<HAL::AppendFileC> m_file;
    std::uint64_t m_sizeBytes = 0; // of the open file, as far as we know
    bool m_bCloseRefused = false;  // and not told yet
    bool m_sole = false;           // we write without the write lock
    // The buffer: lines handed over to a file that has not been looked at since, then lines that wait.
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_written = 0;
    std::size_t m_used = 0;
    std::uint64_t m_nLost = 0;
    // Wall-clock milliseconds; a clock that is set back makes everything due.
    std::uint64_t m_nowMs = 0;
    std::uint64_t m_handedOverMs = 0;
    std::uint64_t m_verifiedMs = 0;
    std::uint64_t m_pathCheckedMs = 0;
    std::uint64_t m_othersSeenMs = 0;
};

} // namespace BSS::DBG
