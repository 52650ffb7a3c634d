// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A log file in the log directory that does not grow beyond its limit: when it is full it becomes the older
// file
// ("ErrorLog.txt" becomes "ErrorLog.1.txt", replacing the one before) and a new one is begun. The file is
// opened for each piece that is written: there is none before the first piece, several processes can write to
// it, one of them can begin a new one, and nothing stays open. One thread at a time; knows nothing of lines
// or levels.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace BSS::DBG {

class DbgLogFileC
{
public:
    /// `name` is the file's name in the log directory. A limit of 0 bytes is no limit.
    DbgLogFileC(std::wstring name, std::uint64_t limitBytes);

    /// Appends the text. A text that is longer than the limit itself is cut to it. False when nothing or not
    /// all was written. Throws std::bad_alloc only.
    [[nodiscard]] bool append(std::string_view text);

    /// Puts the file on the device. True also when there is no file yet.
    [[nodiscard]] bool flush();

private:
    bool makeRoom(const std::wstring& path, std::uint64_t bytes) const;

    const std::wstring m_name;
    const std::uint64_t m_limitBytes;
};

} // namespace BSS::DBG
