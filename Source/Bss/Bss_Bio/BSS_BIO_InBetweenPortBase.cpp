// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Bio/BSS_BIO_InBetweenPortBase.h"

#include "Bss/Bss_Tsk/BSS_TSK_Guard.h"

namespace BSS::BIO {

namespace {

template<typename UserT>
ResultCodeT Attach(TSK::MutexC& lock, UserT*& place, UserT& user)
{
    const TSK::GuardC guard(lock);
    if (place != nullptr && place != &user) return RC_FAILED;
    place = &user;
    return RC_OK;
}

template<typename UserT>
ResultCodeT Detach(TSK::MutexC& lock, UserT*& place, const UserT& user)
{
    const TSK::GuardC guard(lock);
    if (place != &user) return RC_NOT_FOUND;
    place = nullptr;
    return RC_OK;
}

} // namespace

InBetweenPortBaseC::~InBetweenPortBaseC() = default;

ResultCodeT InBetweenPortBaseC::attachReader(PortReaderI& reader)
{
    return Attach(m_readerLock, m_pReader, reader);
}

ResultCodeT InBetweenPortBaseC::attachWriter(PortWriterI& writer)
{
    return Attach(m_writerLock, m_pWriter, writer);
}

ResultCodeT InBetweenPortBaseC::detachReader(const PortReaderI& reader)
{
    return Detach(m_readerLock, m_pReader, reader);
}

ResultCodeT InBetweenPortBaseC::detachWriter(const PortWriterI& writer)
{
    return Detach(m_writerLock, m_pWriter, writer);
}

bool InBetweenPortBaseC::hasReader() const
{
    const TSK::GuardC guard(m_readerLock);
    return m_pReader != nullptr;
}

bool InBetweenPortBaseC::hasWriter() const
{
    const TSK::GuardC guard(m_writerLock);
    return m_pWriter != nullptr;
}

ResultCodeT InBetweenPortBaseC::forwardData(const std::uint8_t* bytes, std::size_t count)
{
    const TSK::GuardC guard(m_readerLock);
    if (m_pReader == nullptr) return RC_OBJECT_MISSING;
    m_pReader->onData(bytes, count);
    return RC_OK;
}

void InBetweenPortBaseC::forwardEvent(PortEvent event, PortReason reason)
{
    {
        const TSK::GuardC guard(m_readerLock);
        if (m_pReader != nullptr) m_pReader->onPortEvent(event, reason);
    }
    const TSK::GuardC guard(m_writerLock);
    if (m_pWriter != nullptr) m_pWriter->onPortEvent(event, reason);
}

} // namespace BSS::BIO
