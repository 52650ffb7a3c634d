// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The exported wrapper: forwards to the reader core and turns its result codes into return values and
// messages. No exception passes: running out of memory is a failure like any other.
#include "ScanReader/QsbReader.h"

#include "API_Hdr/GMAT_Algebra.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Sio/SIO_QsbPointDefinition.h"
#include "Sio/Sio_CacheLine.h"
#include "Sio/Sio_QsbPointIterator.h"
#include "Sio/Sio_QsbReader.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

namespace Kry {
namespace ScanReader {

namespace {

constexpr unsigned int s_uiDefaultSize = 10000;
constexpr std::uint8_t s_ucApplyTransformation = 1;
constexpr std::uint32_t s_uiRequired = SIO::PD_POSITION | SIO::PD_INTENSITY;
constexpr std::size_t s_nMessageCapacity = 128; ///< more than the longest message below

constexpr char s_szStillOpen[] = "QsbReader:Open: A file is still open.";
constexpr char s_szNoQsbFile[] = "QsbReader:Open: Invalid QSB file.";
constexpr char s_szOpenError[] = "QsbReader:Open: Error ";
constexpr char s_szNotFound[] = ", file does not exists.";
constexpr char s_szNotOpened[] = ", could not open file.";
constexpr char s_szUnknown[] = ", unknown error.";
constexpr char s_szNoDataInfo[] = ", failed to get data info.";
constexpr char s_szNoPositionOrIntensity[] =
    "QsbReader:Open: Invalid file, no point position & intensity data.";
constexpr char s_szEndOfFile[] = "End-of-file";
constexpr char s_szReadFailed[] = "QsbReader:Read: Failed to read points.";
constexpr char s_szNoMemory[] = "QsbReader: Out of memory.";

/// In cache lines of its own, since every operation sets it.
using MessageT = std::basic_string<char, std::char_traits<char>, SIO::CacheLineAllocatorT<char>>;

// The batch is decoded into the reader core's records and handed out as the exported ones.
static_assert(sizeof(QsbPoint) == sizeof(SIO::QsbPointC) && alignof(QsbPoint) == alignof(SIO::QsbPointC));
static_assert(std::is_standard_layout_v<QsbPoint> && std::is_standard_layout_v<SIO::QsbPointC>);
static_assert(offsetof(QsbPoint, x) == offsetof(SIO::QsbPointC, x) &&
              offsetof(QsbPoint, y) == offsetof(SIO::QsbPointC, y) &&
              offsetof(QsbPoint, z) == offsetof(SIO::QsbPointC, z) &&
              offsetof(QsbPoint, red) == offsetof(SIO::QsbPointC, red) &&
              offsetof(QsbPoint, green) == offsetof(SIO::QsbPointC, green) &&
              offsetof(QsbPoint, blue) == offsetof(SIO::QsbPointC, blue) &&
              offsetof(QsbPoint, intensity) == offsetof(SIO::QsbPointC, intensity) &&
              offsetof(QsbPoint, levelOfNoise) == offsetof(SIO::QsbPointC, levelOfNoise) &&
              offsetof(QsbPoint, gridIndex0) == offsetof(SIO::QsbPointC, gridIndex0) &&
              offsetof(QsbPoint, gridIndex1) == offsetof(SIO::QsbPointC, gridIndex1));

const char* SuffixOf(BSS::ResultCodeT code)
{
    switch (code) {
    case BSS::RC_NOT_FOUND:
        return s_szNotFound;
    case BSS::RC_FAILED:
        return s_szNotOpened;
    default:
        return s_szUnknown;
    }
}

} // namespace

QsbPoint& QsbPoint::operator=(const QsbPoint& other) noexcept
{
    x = other.x;
    y = other.y;
    z = other.z;
    red = other.red;
    green = other.green;
    blue = other.blue;
    intensity = other.intensity;
    levelOfNoise = other.levelOfNoise;
    gridIndex0 = other.gridIndex0;
    gridIndex1 = other.gridIndex1;
    return *this;
}

QsbPoint& QsbPoint::operator=(QsbPoint&& other) noexcept
{
    return *this = static_cast<const QsbPoint&>(other);
}

struct alignas(SIO::s_nCacheLineBytes) QsbReadIterator::State
{
    explicit State(unsigned int size) : vecPoints(size), oIterator(size), oPointIterator(FirstRecord()) {}

    SIO::QsbPointC* FirstRecord()
    {
        // A batch of one point needs a place even in an iterator that holds none.
        return vecPoints.empty() ? &oScratch : vecPoints.data();
    }

    SIO::QsbPointC oScratch;
    std::vector<SIO::QsbPointC, SIO::CacheLineAllocatorT<SIO::QsbPointC>> vecPoints;
    SIO::QsbReaderIteratorC oIterator;
    SIO::QsbPointArrayIteratorC oPointIterator;
};

struct alignas(SIO::s_nCacheLineBytes) QsbReader::State
{
    State() { strMessage.reserve(s_nMessageCapacity); }

    bool IsOpen() const noexcept { return uiContentFlags != 0; }
    void SetMessage(const char* message) { strMessage = message; }

    void SetOpenError(BSS::ResultCodeT code, const char* suffix)
    {
        strMessage = s_szOpenError;
        strMessage += std::to_string(static_cast<std::int32_t>(code)).c_str();
        strMessage += suffix;
    }

    int Open(const char* path);
    int Read(SIO::QsbReaderIteratorC& iterator, SIO::QsbPointArrayIteratorC& points, std::uint64_t& count);

    int Close()
    {
        if (!IsOpen()) return 0;
        oReader.Close();
        uiContentFlags = 0;
        return 0;
    }

    MessageT strMessage; ///< never grows beyond what it has room for, so setting it cannot fail
    SIO::QsbReaderC oReader;
    std::uint32_t uiContentFlags = 0;
};

int QsbReader::State::Open(const char* path)
{
    SetMessage("");
    if (IsOpen()) {
        SetMessage(s_szStillOpen);
        return -1;
    }
    if (path == nullptr) {
        SetMessage(s_szNoQsbFile);
        return -1;
    }
    const boost::filesystem::path file = BSS::HAL::FilesystemPath(BSS::HAL::WidePath(path));
    bool bQsbFile = false;
    const BSS::ResultCodeT opened = oReader.CheckAndOpen(file, s_ucApplyTransformation, bQsbFile);
    if (!bQsbFile) {
        SetMessage(s_szNoQsbFile);
        return -1;
    }
    if (const BSS::ResultCodeT code = opened; code != BSS::RC_OK) {
        SetOpenError(code, SuffixOf(code));
        return -1;
    }
    if (const BSS::ResultCodeT code = oReader.GetDataInfo(uiContentFlags); code != BSS::RC_OK) {
        Close();
        SetOpenError(code, s_szNoDataInfo);
        return -1;
    }
    if ((uiContentFlags & s_uiRequired) == s_uiRequired) return 0;
    Close();
    SetMessage(s_szNoPositionOrIntensity);
    return -1;
}

int QsbReader::State::Read(SIO::QsbReaderIteratorC& iterator, SIO::QsbPointArrayIteratorC& points,
                           std::uint64_t& count)
{
    SetMessage("");
    if (!iterator.HasMorePoints()) {
        SetMessage(s_szEndOfFile);
        return 0;
    }
    points.Reset();
    std::int32_t iCount = 0;
    const BSS::ResultCodeT code = oReader.Read(iterator, points, iCount);
    // A batch that the file does not hold whole comes back as a success with a count of -1.
    if (code != BSS::RC_OK || iCount < 0) {
        SetMessage(s_szReadFailed);
        return -1;
    }
    iterator.Next();
    count = static_cast<std::uint64_t>(iCount);
    return 0;
}

QsbReadIterator::QsbReadIterator() : QsbReadIterator(s_uiDefaultSize) {}

QsbReadIterator::QsbReadIterator(unsigned int size) : m_pState(nullptr)
{
    try {
        m_pState = new State(size);
    } catch (...) {
        // Without a state every operation answers neutrally.
    }
}

QsbReadIterator::~QsbReadIterator()
{
    delete m_pState;
}

QsbReadIterator& QsbReadIterator::operator=(const QsbReadIterator& other) noexcept
{
    m_pState = other.m_pState;
    return *this;
}

const QsbPoint* QsbReadIterator::GetPoint(std::uint64_t i) const noexcept
{
    if (m_pState == nullptr || i >= m_pState->vecPoints.size()) return nullptr;
    return GetPoints() + i;
}

const QsbPoint* QsbReadIterator::GetPoints() const noexcept
{
    if (m_pState == nullptr || m_pState->vecPoints.empty()) return nullptr;
    return reinterpret_cast<const QsbPoint*>(m_pState->vecPoints.data());
}

QsbReader::QsbReader() : m_pState(nullptr)
{
    try {
        m_pState = new State;
    } catch (...) {
        // As for the iterator.
    }
}

QsbReader::~QsbReader()
{
    Close();
    delete m_pState;
}

QsbReader& QsbReader::operator=(const QsbReader& other) noexcept
{
    m_pState = other.m_pState;
    return *this;
}

int QsbReader::Open(const char* path) noexcept
{
    if (m_pState == nullptr) return -1;
    try {
        return m_pState->Open(path);
    } catch (...) {
        m_pState->oReader.Close();
        m_pState->uiContentFlags = 0;
        m_pState->SetOpenError(BSS::RC_FAILED, s_szNotOpened);
        return -1;
    }
}

int QsbReader::Close() noexcept
{
    return m_pState != nullptr ? m_pState->Close() : 0;
}

int QsbReader::Read(QsbReadIterator& it, std::uint64_t& count) noexcept
{
    count = 0;
    if (m_pState == nullptr) return -1;
    if (it.m_pState == nullptr) {
        m_pState->SetMessage(s_szReadFailed);
        return -1;
    }
    try {
        return m_pState->Read(it.m_pState->oIterator, it.m_pState->oPointIterator, count);
    } catch (...) {
        m_pState->SetMessage(s_szReadFailed);
        return -1;
    }
}

std::uint64_t QsbReader::GetNumPoints() noexcept
{
    std::uint32_t uiPoints = 0;
    if (m_pState == nullptr || m_pState->oReader.GetNumPoints(uiPoints) != BSS::RC_OK) return 0;
    return uiPoints;
}

bool QsbReader::GetGridSize(std::uint64_t& first, std::uint64_t& second) noexcept
{
    std::uint32_t auiSize[2] = {0, 0};
    if (m_pState == nullptr || m_pState->oReader.GetGridSize(auiSize[0], auiSize[1]) != BSS::RC_OK)
        return false;
    if (auiSize[0] == 0 || auiSize[1] == 0) return false;
    // The file has the largest index; the sum wraps in 32 bits.
    first = auiSize[0] + 1;
    second = auiSize[1] + 1;
    return true;
}

double QsbReader::GetInstrumentHeight() noexcept
{
    double dHeight = 0.0;
    if (m_pState == nullptr || m_pState->oReader.GetInstrumentHeight(dHeight) != BSS::RC_OK) return 0.0;
    return dHeight;
}

void QsbReader::GetTransformation(double* m) noexcept
{
    if (m == nullptr) return;
    GMAT::Matrix4C matrix;
    if (m_pState != nullptr) (void)m_pState->oReader.GetTransformation(matrix);
    std::memcpy(m, &matrix, sizeof matrix);
}

bool QsbReader::HasColor() const noexcept
{
    return m_pState != nullptr && (m_pState->uiContentFlags & SIO::PD_COLOR) != 0;
}

bool QsbReader::HasGrid() const noexcept
{
    if (m_pState == nullptr || (m_pState->uiContentFlags & SIO::PD_GRID) == 0) return false;
    std::uint32_t auiSize[2] = {0, 0};
    return m_pState->oReader.GetGridSize(auiSize[0], auiSize[1]) == BSS::RC_OK && auiSize[0] != 0 &&
           auiSize[1] != 0;
}

bool QsbReader::HasNoiseRatio() const noexcept
{
    return m_pState != nullptr && (m_pState->uiContentFlags & SIO::PD_LEVEL_OF_NOISE) != 0;
}

const char* QsbReader::RetMsg() noexcept
{
    return m_pState != nullptr ? m_pState->strMessage.c_str() : s_szNoMemory;
}

} // namespace ScanReader
} // namespace Kry
