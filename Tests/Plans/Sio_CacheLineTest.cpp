// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What belongs to one reader shares no cache line with what belongs to another.
#include "Sio/Sio_CacheLine.h"
#include "Plans/PlanCases.h"
#include "ScanReader/QsbReader.h"
#include "Sio/Sio_Qsb.h"
#include "Sio/Sio_QsbReaderImpl.h"
#include "Sio/Sio_QsbReaderIteratorImpl.h"
#include "Sio/Sio_QsbStrategy.h"

#include <limits>
#include <memory>
#include <new>

namespace {

using SIO::CacheLineAllocatorT;
using SIO::s_nCacheLineBytes;

std::uintptr_t LineOf(const void* pByte)
{
    return reinterpret_cast<std::uintptr_t>(pByte) / s_nCacheLineBytes;
}

bool BeginsALine(const void* pByte)
{
    return reinterpret_cast<std::uintptr_t>(pByte) % s_nCacheLineBytes == 0;
}

TEST(CacheLine, TheAllocatorGivesOutWholeLines)
{
    CacheLineAllocatorT<char> allocator;
    for (const std::size_t nBytes : {1u, 63u, 64u, 65u, 1000u}) {
        char* const pFirst = allocator.allocate(nBytes);
        char* const pSecond = allocator.allocate(1);
        EXPECT_TRUE(BeginsALine(pFirst));
        EXPECT_TRUE(BeginsALine(pSecond));
        EXPECT_TRUE(LineOf(pSecond) < LineOf(pFirst) || LineOf(pSecond) > LineOf(pFirst + nBytes - 1));
        // The rest of the last line is the owner's as well: writing to it is no error.
        for (char* p = pFirst; LineOf(p) <= LineOf(pFirst + nBytes - 1); ++p)
            *p = 'x';
        allocator.deallocate(pSecond, 1);
        allocator.deallocate(pFirst, nBytes);
    }
}

TEST(CacheLine, TheAllocatorRefusesMoreThanThereCanBe)
{
    constexpr std::size_t nMost = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(static_cast<void>(CacheLineAllocatorT<char>().allocate(nMost)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(CacheLineAllocatorT<double>().allocate(nMost / 8)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(CacheLineAllocatorT<double>().allocate(nMost / 8 + 2)), std::bad_alloc);
}

TEST(CacheLine, WhatEveryBatchWritesBeginsALineAndFillsWholeOnes)
{
    static_assert(alignof(SIO::QsbReaderImplC) == s_nCacheLineBytes);
    static_assert(alignof(SIO::QsbReaderIteratorImplC) == s_nCacheLineBytes);
    static_assert(alignof(SIO::QsbC) == s_nCacheLineBytes);
    static_assert(alignof(SIO::QsbStrategyC) == s_nCacheLineBytes);
    static_assert(alignof(SIO::QsbStrategyDataC) == s_nCacheLineBytes);
    EXPECT_TRUE(BeginsALine(std::make_unique<SIO::QsbReaderImplC>().get()));
    EXPECT_TRUE(BeginsALine(std::make_unique<SIO::QsbReaderIteratorImplC>(3u).get()));
    for (const unsigned int uiSize : {1u, 7u, 10000u})
        EXPECT_TRUE(BeginsALine(Kry::ScanReader::QsbReadIterator(uiSize).GetPoints())) << uiSize;
}

} // namespace
