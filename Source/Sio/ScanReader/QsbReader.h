// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The public interface of ScanReader: open a QSB file, ask what the scan holds, pull its points in batches.
//
//     Kry::ScanReader::QsbReader reader;
//     if (reader.Open("scan.qsb") != 0) return Fail(reader.RetMsg());
//     Kry::ScanReader::QsbReadIterator batch;
//     std::uint64_t count = 0;
//     while (reader.Read(batch, count) == 0 && count > 0)
//         Use(batch.GetPoints(), count);
//
// Failures are told by return values, with a text in RetMsg(); nothing is thrown across this interface, and
// no type of the standard library passes it. A reader and the iterators used with it belong to one thread at
// a time; distinct readers with their own iterators are independent. Works with C++11 and later.
#ifndef SCANREADER_QSBREADER_H
#define SCANREADER_QSBREADER_H

#include <ScanReader/Export.h>
#include <cstdint>

namespace Kry {
namespace ScanReader {

/** One point, 40 bytes without gaps but one byte of alignment after the colour. Elements that a file does not
 * carry are never written. */
struct QsbPoint
{
    double x;           /**< position in the unit of the file, mapped by the file's transformation */
    double y;           /**< likewise */
    double z;           /**< likewise */
    std::uint8_t red;   /**< colour, 0 to 255 */
    std::uint8_t green; /**< likewise */
    std::uint8_t blue;  /**< likewise */
    std::uint16_t
        intensity; /**< as stored; wider or signed encodings keep the low 16 bits of their whole part */
    std::uint16_t levelOfNoise; /**< likewise */
    std::uint32_t gridIndex0;   /**< row in the scan grid, from 0 */
    std::uint32_t gridIndex1;   /**< column in the scan grid, from 0 */

    /** Every field 0. */
    QsbPoint() noexcept
        : x(0), y(0), z(0), red(0), green(0), blue(0), intensity(0), levelOfNoise(0), gridIndex0(0),
          gridIndex1(0)
    {}

    QsbPoint(const QsbPoint&) noexcept = default;

    /** Copies every field. */
    SCANREADER_API QsbPoint& operator=(const QsbPoint& other) noexcept;

    /** Copies every field; `other` stays as it was. */
    SCANREADER_API QsbPoint& operator=(QsbPoint&& other) noexcept;
};

/** The points of one batch, and the position in the file at which the next one begins. Memory: 40 bytes per
 * point of its size, and as many stored records of the file it was last used with. */
class QsbReadIterator
{
public:
    /** Batches of 10000 points. */
    SCANREADER_API QsbReadIterator();

    /** Batches of `size` points. With 0 (which is reported in the error log) batches deliver one point that
     * is held nowhere. When memory runs out the iterator holds no points and every Read with it fails. */
    SCANREADER_API explicit QsbReadIterator(unsigned int size);

    SCANREADER_API ~QsbReadIterator();

    QsbReadIterator(const QsbReadIterator&) = delete;

    /** Warning: shares the state of `other` without counting, so that both destructors free it, and loses its
     * own. Part of the interface as it always was; not for use. */
    SCANREADER_API QsbReadIterator& operator=(const QsbReadIterator& other) noexcept;

    /** Record `i`, null when `i` is not below the iterator's size. Records at and beyond the count of the
     * last Read hold what earlier batches left there. Owned by the iterator; its content is valid until the
     * next Read. */
    SCANREADER_API const QsbPoint* GetPoint(std::uint64_t i) const noexcept;

    /** The first record, null when the iterator's size is 0. Ownership as above. */
    SCANREADER_API const QsbPoint* GetPoints() const noexcept;

private:
    friend class QsbReader;

    struct State;
    State* m_pState;
};

/** Reads one QSB file at a time. */
class QsbReader
{
public:
    SCANREADER_API QsbReader();

    /** Closes. */
    SCANREADER_API ~QsbReader();

    QsbReader(const QsbReader&) = delete;

    /** Warning: as for QsbReadIterator. */
    SCANREADER_API QsbReader& operator=(const QsbReader& other) noexcept;

    /** Opens the scan at `path`: on Linux the bytes of the name, on Windows UTF-8 or, when it is not valid
     * UTF-8, the active code page. Returns 0, or -1 with a message: a file is open (it stays open), the file
     * is no QSB file, cannot be opened, or has no positions or no intensities. After a failure of another
     * kind the reader is closed and can open another file. */
    SCANREADER_API int Open(const char* path) noexcept;

    /** Closes the file; does nothing when none is open. Returns 0. The message stays. */
    SCANREADER_API int Close() noexcept;

    /** Reads the batch at the iterator's position and moves the iterator on by its size. Returns 0 with
     * `count`, the number of points delivered: 0 when the position has reached the end, mostly with the
     * message "End-of-file". Or -1 with a message and `count` 0 when no file is open or the file does not
     * hold the batch whole: the iterator then stays where it was and its points as they were. An iterator
     * keeps its position through Close, Open and a change of reader. Whether points remain is asked of the
     * reader that it was last used with: one that is closed since has none, so "End-of-file" is its answer
     * too. */
    SCANREADER_API int Read(QsbReadIterator& it, std::uint64_t& count) noexcept;

    /** Number of points, 0 when no file is open. */
    SCANREADER_API std::uint64_t GetNumPoints() noexcept;

    /** Rows and columns of the scan grid. False, and both stay as they were, when no file is open or it has
     * no grid of at least 2 x 2. */
    SCANREADER_API bool GetGridSize(std::uint64_t& first, std::uint64_t& second) noexcept;

    /** Height of the instrument as stored, 0.0 when no file is open. It is part of neither positions nor
     * matrix. */
    SCANREADER_API double GetInstrumentHeight() noexcept;

    /** Writes the file's 4 x 4 matrix to `m`, which has room for 16 numbers: element (row i, column j) to m[4
     * * i + j]. It maps column vectors, so the translation is in m[3], m[7], m[11]. The identity when no file
     * is open. */
    SCANREADER_API void GetTransformation(double* m) noexcept;

    /** Whether the points have colours. */
    SCANREADER_API bool HasColor() const noexcept;

    /** Whether the points have grid indices and the file has a grid of at least 2 x 2. */
    SCANREADER_API bool HasGrid() const noexcept;

    /** Whether the points have a level of noise. */
    SCANREADER_API bool HasNoiseRatio() const noexcept;

    /** What the last Open or Read had to say; empty after success. Valid until the next Open or Read. */
    SCANREADER_API const char* RetMsg() noexcept;

private:
    struct State;
    State* m_pState;
};

} // namespace ScanReader
} // namespace Kry

#endif
