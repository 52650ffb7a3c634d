// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What stands between a link and those who use it: at most one reader, which is given what arrives, and at
// most one writer, and both are told when the link comes and goes. A derived class is the link.
//
// Attaching, detaching and writing are safe from any thread. When detach returns, the detached one is not
// being called any more, unless it is the one that calls.
#pragma once

#include "Bss/Bss_Bio/BSS_BIO_PortUsers.h"
#include "Bss/Bss_Tsk/BSS_TSK_Mutex.h"

#include <cstddef>
#include <cstdint>

namespace BSS::BIO {

class InBetweenPortBaseC
{
public:
    InBetweenPortBaseC() = default;
    virtual ~InBetweenPortBaseC();
    InBetweenPortBaseC(const InBetweenPortBaseC&) = delete;
    InBetweenPortBaseC& operator=(const InBetweenPortBaseC&) = delete;

    /// Not owned. RC_FAILED when another one is attached. One that comes late is not told what has been.
    [[nodiscard]] ResultCodeT attachReader(PortReaderI& reader);
    [[nodiscard]] ResultCodeT attachWriter(PortWriterI& writer);

    /// RC_NOT_FOUND when it is not the attached one.
    ResultCodeT detachReader(const PortReaderI& reader);
    ResultCodeT detachWriter(const PortWriterI& writer);

    bool hasReader() const;
    bool hasWriter() const;

    /// Sends. `nWritten` tells how much has gone, also when not all of it could.
    [[nodiscard]] virtual ResultCodeT write(const void* bytes, std::size_t count, std::size_t& nWritten) = 0;

    /// Throws away what has arrived and nobody has read; what is not sent yet.
    virtual ResultCodeT discardRd() = 0;
    virtual ResultCodeT discardWr() = 0;

protected:
    /// Gives data to the reader. RC_OBJECT_MISSING, and the data are gone, when there is none.
    ResultCodeT forwardData(const std::uint8_t* bytes, std::size_t count);

    /// Tells both, the reader first.
    void forwardEvent(PortEvent event, PortReason reason);

private:
    mutable TSK::MutexC m_readerLock; // held while the reader is called
    PortReaderI* m_pReader = nullptr;
    mutable TSK::MutexC m_writerLock; // held while the writer is called
    PortWriterI* m_pWriter = nullptr;
};

} // namespace BSS::BIO
