// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The C functions over the exported classes, which throw nothing, so that nothing can pass from here either. A batch is
// decoded in a buffer that fits the processor's cache and copied from there: the caller may ask for any number of
// points, and reading costs about the same.
#include "ScanReader/qsb.h"

#include "ScanReader/QsbReader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

using Kry::ScanReader::QsbPoint;
using Kry::ScanReader::QsbReader;
using Kry::ScanReader::QsbReadIterator;

static_assert(sizeof(qsb_point) == 40 && sizeof(qsb_point) == sizeof(QsbPoint), "records are copied as they are");
static_assert(offsetof(qsb_point, x) == offsetof(QsbPoint, x) && offsetof(qsb_point, z) == offsetof(QsbPoint, z) &&
              offsetof(qsb_point, red) == offsetof(QsbPoint, red) && offsetof(qsb_point, blue) == offsetof(QsbPoint, blue) &&
              offsetof(qsb_point, intensity) == offsetof(QsbPoint, intensity) &&
              offsetof(qsb_point, noise) == offsetof(QsbPoint, levelOfNoise) &&
              offsetof(qsb_point, row) == offsetof(QsbPoint, gridIndex0) &&
              offsetof(qsb_point, column) == offsetof(QsbPoint, gridIndex1));
static_assert(QSB_VERSION == SCANREADER_VERSION_MAJOR * 0x10000 + SCANREADER_VERSION_MINOR * 0x100 + SCANREADER_VERSION_PATCH,
              "the header and the project agree on the version");
static_assert(sizeof(qsb_facts) == 168 && offsetof(qsb_facts, content) == 160, "part of the binary interface");

namespace {

constexpr char s_szNoMemory[] = "QsbReader: Out of memory.";
constexpr char s_szNoPath[] = "QsbReader:Open: Invalid QSB file.";
constexpr std::size_t s_tFirstFactsSize = 168; ///< of version 1.0, the smallest that a caller may have

void CopyMessage(const char* text, char* message, std::size_t size) noexcept
{
    if (message == nullptr || size == 0) return;
    const std::size_t length = std::min(std::strlen(text), size - 1);
    std::memcpy(message, text, length);
    message[length] = '\0';
}

void CopyPoints(const QsbPoint* from, qsb_point* to, std::size_t count) noexcept
{
    std::memcpy(static_cast<void*>(to), static_cast<const void*>(from), count * sizeof(qsb_point));
    // The byte of alignment holds anything.
    for (std::size_t i = 0; i < count; ++i)
        to[i].reserved = 0;
}

} // namespace

struct qsb_reader
{
    bool Refill() noexcept
    {
        m_taken = 0;
        m_filled = 0;
        return m_reader.Read(m_batch, m_filled) == 0;
    }

    QsbReader m_reader;
    QsbReadIterator m_batch;
    std::uint64_t m_filled = 0; ///< points in the batch
    std::uint64_t m_taken = 0;  ///< of these, delivered already
    const char* m_message = ""; ///< of the last operation; the reader's own text or a constant
};

std::uint32_t qsb_version(void)
{
    return QSB_VERSION;
}

qsb_reader* qsb_open(const char* path, char* message, std::size_t message_size)
{
    CopyMessage("", message, message_size);
    if (path == nullptr) {
        CopyMessage(s_szNoPath, message, message_size);
        return nullptr;
    }
    auto* const reader = new (std::nothrow) qsb_reader;
    if (reader == nullptr) {
        CopyMessage(s_szNoMemory, message, message_size);
        return nullptr;
    }
    if (reader->m_reader.Open(path) == 0) return reader;
    CopyMessage(reader->m_reader.RetMsg(), message, message_size);
    delete reader;
    return nullptr;
}

void qsb_close(qsb_reader* reader)
{
    delete reader;
}

int qsb_get_facts(qsb_reader* reader, qsb_facts* facts, std::size_t facts_size)
{
    if (reader == nullptr || facts == nullptr || facts_size < s_tFirstFactsSize) return QSB_BAD_ARGUMENT;
    QsbReader& source = reader->m_reader;
    qsb_facts known = {};
    known.points = source.GetNumPoints();
    std::uint64_t rows = 0;
    std::uint64_t columns = 0;
    if (source.GetGridSize(rows, columns)) {
        known.rows = rows;
        known.columns = columns;
    }
    known.instrument_height = source.GetInstrumentHeight();
    source.GetTransformation(known.transformation);
    known.content = (source.HasNoiseRatio() ? QSB_HAS_NOISE : 0) | (source.HasGrid() ? QSB_HAS_GRID : 0) |
                    (source.HasColor() ? QSB_HAS_COLOR : 0);
    std::memset(facts, 0, facts_size);
    std::memcpy(facts, &known, std::min(facts_size, sizeof known));
    return QSB_OK;
}

int qsb_read(qsb_reader* reader, qsb_point* points, std::size_t point_size, std::size_t capacity, std::size_t* count)
{
    if (reader == nullptr || points == nullptr || count == nullptr) return QSB_BAD_ARGUMENT;
    if (point_size != sizeof(qsb_point) || capacity == 0) return QSB_BAD_ARGUMENT;
    *count = 0;
    while (*count < capacity) {
        if (reader->m_taken == reader->m_filled) {
            const bool done = reader->Refill();
            if (!done && *count == 0) {
                reader->m_message = reader->m_reader.RetMsg();
                return QSB_FAILED;
            }
            if (!done || reader->m_filled == 0) break; // the next call says which of the two
        }
        const auto left = static_cast<std::size_t>(reader->m_filled - reader->m_taken);
        const std::size_t portion = std::min(left, capacity - *count);
        CopyPoints(reader->m_batch.GetPoints() + reader->m_taken, points + *count, portion);
        reader->m_taken += portion;
        *count += portion;
    }
    reader->m_message = *count > 0 ? "" : reader->m_reader.RetMsg();
    return QSB_OK;
}

const char* qsb_last_message(const qsb_reader* reader)
{
    return reader != nullptr ? reader->m_message : "";
}
