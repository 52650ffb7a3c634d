// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_TextBlock.h"

#include <boost/numeric/conversion/cast.hpp>
#include <cwchar>
#include <new>

namespace BSS::UTI {

TextBlockC::TextBlockC(const wchar_t* text, std::size_t length)
{
    if (length > INLINE_CHARS) {
        // A length is a signed number of 32 bits wherever it is told, so no text may be longer.
        m_capacity = static_cast<std::uint32_t>(boost::numeric_cast<std::int32_t>(length)) + 1;
        m_pHeap = new wchar_t[m_capacity];
    }
    if (length > 0) std::wmemcpy(Text(), text, length);
    Text()[length] = L'\0';
}

TextBlockC::~TextBlockC()
{
    delete[] m_pHeap;
}

TextBlockC* TextBlockC::Make(const wchar_t* text)
{
    return Make(text, text != nullptr ? std::wcslen(text) : 0);
}

TextBlockC* TextBlockC::Make(const wchar_t* text, std::size_t length)
{
    return new TextBlockC(text, length);
}

TextBlockC* TextBlockC::AcquireEmpty() noexcept
{
    // Never destroyed: strings may outlive every static object.
    alignas(TextBlockC) static unsigned char storage[sizeof(TextBlockC)];
    static TextBlockC* const empty = new (storage) TextBlockC;
    empty->Acquire();
    return empty;
}

void TextBlockC::Grow(std::size_t capacity, std::size_t length)
{
    const auto larger = static_cast<std::uint32_t>(boost::numeric_cast<std::int32_t>(capacity - 1)) + 1;
    auto* const buffer = new wchar_t[larger];
    std::wmemcpy(buffer, Text(), length + 1);
    delete[] m_pHeap;
    m_pHeap = buffer;
    m_capacity = larger;
}

} // namespace BSS::UTI
