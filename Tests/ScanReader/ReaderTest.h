// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the tests of the exported reader share. They see the library as a host does: through its public
// header.
#pragma once

#include "Support/QsbBytes.h"
#include "Support/ScanFolder.h"

#include <ScanReader/QsbReader.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ReaderTest {

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

inline constexpr char s_szStillOpen[] = "QsbReader:Open: A file is still open.";
inline constexpr char s_szNoQsbFile[] = "QsbReader:Open: Invalid QSB file.";
inline constexpr char s_szNotOpened[] = "QsbReader:Open: Error 33554458, could not open file.";
inline constexpr char s_szNotThere[] = "QsbReader:Open: Error 33554459, file does not exists.";
inline constexpr char s_szIncomplete[] = "QsbReader:Open: Invalid file, no point position & intensity data.";
inline constexpr char s_szReadFailed[] = "QsbReader:Read: Failed to read points.";
inline constexpr char s_szEnd[] = "End-of-file";

/// What one call of Read gave.
struct ReadResult
{
    int result;
    std::uint64_t count;
    std::string message;

    bool operator==(const ReadResult&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const ReadResult& read)
{
    return stream << read.result << ", " << read.count << ", \"" << read.message << '"';
}

inline ReadResult ReadWith(QsbReader& reader, QsbReadIterator& iterator)
{
    std::uint64_t count = 4711;
    const int result = reader.Read(iterator, count);
    return {result, count, reader.RetMsg()};
}

class Fixture : public testing::Test
{
protected:
    int Open(const Support::BytesT& bytes) { return reader.Open(folder.Write("scan.qsb", bytes).c_str()); }
    int Open(const Support::QsbBytes& file) { return Open(file.Get()); }
    ReadResult Read(QsbReadIterator& iterator) { return ReadWith(reader, iterator); }
    std::string Message() { return reader.RetMsg(); }

    Support::ScanFolder folder;
    QsbReader reader;
};

inline const ReadResult s_end{0, 0, s_szEnd};
inline const ReadResult s_failed{-1, 0, s_szReadFailed};

} // namespace ReaderTest
