/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The ScanReader developers
 *
 * ScanReader for other compilers and languages: plain C functions, fixed-size records, one opaque handle. Clean in C89,
 * C99 and C++.
 *
 *     qsb_point points[1000];
 *     char message[QSB_MESSAGE_SIZE];
 *     size_t count;
 *     qsb_reader* reader = qsb_open("scan.qsb", message, sizeof message);
 *     if (reader == NULL) return fail(message);
 *     while (qsb_read(reader, points, sizeof points[0], 1000, &count) == QSB_OK && count > 0)
 *         use(points, count);
 *     puts(qsb_last_message(reader));
 *     qsb_close(reader);
 *
 * Threads: a reader belongs to one thread at a time, whichever it is; different readers are independent and may be used
 * at once. qsb_version and qsb_open may be called from any thread at any time. No function throws, calls back or keeps
 * a pointer that it was given.
 *
 * Versions: records only ever grow at their end, and the caller passes the size that it was compiled with. A library
 * with the same major version therefore serves programs built against older headers.
 */
#ifndef SCANREADER_QSB_H
#define SCANREADER_QSB_H

#include <ScanReader/Export.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Version of this header: major * 65536 + minor * 256 + patch. */
#define QSB_VERSION 0x010000

/* What a function returns. */
#define QSB_OK 0              /**< done */
#define QSB_FAILED (-1)       /**< the file or the system refused; qsb_last_message says why */
#define QSB_BAD_ARGUMENT (-2) /**< a null pointer, no room, or a record size of no version; nothing was done */

/* Bits of qsb_facts.content: what the points carry. A field that they do not carry is 0. */
#define QSB_HAS_NOISE 1u /**< noise */
#define QSB_HAS_GRID 2u  /**< row and column, in a grid of at least 2 x 2 */
#define QSB_HAS_COLOR 4u /**< red, green, blue */

/** Room for every message, with its terminating zero. */
#define QSB_MESSAGE_SIZE 128

/** An open file. */
typedef struct qsb_reader qsb_reader;

/** One point, 40 bytes. */
typedef struct qsb_point
{
    double x;           /**< position in the unit of the file, mapped by the file's transformation */
    double y;           /**< likewise */
    double z;           /**< likewise */
    uint8_t red;        /**< colour, 0 to 255 */
    uint8_t green;      /**< likewise */
    uint8_t blue;       /**< likewise */
    uint8_t reserved;   /**< 0 */
    uint16_t intensity; /**< as stored; wider or signed encodings keep the low 16 bits of their whole part */
    uint16_t noise;     /**< likewise */
    uint32_t row;       /**< in the scan grid, from 0 */
    uint32_t column;    /**< likewise */
} qsb_point;

/** What a file says of its scan, 168 bytes. */
typedef struct qsb_facts
{
    uint64_t points;           /**< number of points */
    uint64_t rows;             /**< of the scan grid; 0 when there is none of at least 2 x 2 */
    uint64_t columns;          /**< likewise */
    double instrument_height;  /**< part of neither positions nor transformation */
    double transformation[16]; /**< row by row; maps column vectors, so the translation is in [3], [7] and [11] */
    uint32_t content;          /**< QSB_HAS_ bits */
    uint32_t reserved;         /**< 0 */
} qsb_facts;

/** Version of the library, in the form of QSB_VERSION. */
SCANREADER_C_API uint32_t qsb_version(void);

/** Opens the scan at `path`: the bytes of the name on Linux; on Windows UTF-8, and what is not valid UTF-8 is taken in
 *  the active code page. Returns null when that fails; then `message` holds the reason, cut to `message_size` bytes with
 *  its zero. After success it is empty. `message` may be null. The caller closes the reader. */
SCANREADER_C_API qsb_reader* qsb_open(const char* path, char* message, size_t message_size);

/** Closes and frees. Null is allowed. */
SCANREADER_C_API void qsb_close(qsb_reader* reader);

/** Writes what the file says to `facts`, of which the caller knows `facts_size` bytes (its sizeof); bytes that the
 *  library knows nothing of become 0. */
SCANREADER_C_API int qsb_get_facts(qsb_reader* reader, qsb_facts* facts, size_t facts_size);

/** Writes the next points, `capacity` at most (1 or more), to `points`, whose elements have `point_size` bytes (sizeof of
 *  qsb_point), and their number to `count`. Fewer than `capacity` come only at the end of the file or before a failure:
 *  the call after that returns QSB_OK with `count` 0 and the message "End-of-file", or QSB_FAILED. Records beyond
 *  `count` stay as they were. Reading is fastest with thousands of points at a time. */
SCANREADER_C_API int qsb_read(qsb_reader* reader, qsb_point* points, size_t point_size, size_t capacity, size_t* count);

/** What the last qsb_open or qsb_read on this reader had to say; empty after success. Valid until the next call with
 *  this reader. */
SCANREADER_C_API const char* qsb_last_message(const qsb_reader* reader);

#ifdef __cplusplus
}
#endif

#endif
