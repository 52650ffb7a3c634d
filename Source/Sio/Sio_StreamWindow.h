// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Looks at a stream through a window, so that many small reads cost few calls of the system. Reading on near
// the end of the window makes the next one larger, a jump makes it small again: what is not wanted is hardly
// read. Large reads go past the window into the caller's memory. The window remembers where the stream stands
// and seeks only when it must. One thread at a time; the stream is not owned, and whoever moves or writes it
// says so with Forget.
#pragma once

#include "Sio/Sio_CacheLine.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

namespace SIO {

class StreamWindowC
{
public:
    /// Most bytes that View shows.
    static constexpr std::size_t s_nLargest = std::size_t{1} << 17;

    /// From now on looks at `stream` (null: at nothing), and turns its own buffer off, which would only copy
    /// once more. May throw std::bad_alloc.
    void Attach(std::FILE* stream);

    /// Shows up to `nBytes` at `ullOffset`; `nShown` is smaller than that only at the end of the file or
    /// after an error. What is returned is valid until the next operation.
    const char* View(std::uint64_t ullOffset, std::size_t nBytes, std::size_t& nShown);

    /// As View, but shows all that the window has from there on, which may be more than `nBytes`.
    const char* ViewAll(std::uint64_t ullOffset, std::size_t nBytes, std::size_t& nShown);

    /// Reads `nBytes` at `ullOffset` into the caller's memory. False when the file has fewer, or on an error.
    [[nodiscard]] bool Read(std::uint64_t ullOffset, std::size_t nBytes, void* pDestination);

    /// Whether the last View ended in an error rather than at the end of the file.
    bool HasFailed() const noexcept { return m_bFailed; }

    /// The window's content and the position of the stream are no longer what they were.
    void Forget() noexcept;

private:
    bool MoveTo(std::uint64_t ullOffset);
    void Fill(std::size_t nWanted);

    struct alignas(s_nCacheLineBytes) BytesT
    {
        char acBytes[s_nLargest];
    };

    char* Bytes() const noexcept { return m_pBuffer->acBytes; }

    static constexpr std::uint64_t s_ullNowhere = ~std::uint64_t{0};

    std::FILE* m_pStream = nullptr;
    std::unique_ptr<BytesT> m_pBuffer;
    std::uint64_t m_ullBegin = 0; ///< file offset of the window's first byte
    std::size_t m_nFill = 0;
    std::size_t m_nNextFill = 0;
    std::uint64_t m_ullStreamAt = s_ullNowhere;
    bool m_bFailed = false;
};

} // namespace SIO
