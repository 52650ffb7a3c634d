// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A lock that any number of readers or one writer hold. It is held through the classes of
// BSS_TSK_ReadWriteLocks.h; not recursive. Not an interruption point.
#pragma once

#include <shared_mutex>

namespace BSS::TSK {

class ReaderWriterLockC
{
public:
    ReaderWriterLockC() = default;
    virtual ~ReaderWriterLockC();
    ReaderWriterLockC(const ReaderWriterLockC&) = delete;
    ReaderWriterLockC& operator=(const ReaderWriterLockC&) = delete;

private:
    friend class ReadLockC;
    friend class WriteLockC;
    friend class TryReadLockC;
    friend class TryWriteLockC;

    std::shared_mutex m_mutex;
};

} // namespace BSS::TSK
