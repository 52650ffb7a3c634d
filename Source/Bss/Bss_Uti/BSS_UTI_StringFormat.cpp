// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Formatting into a string: a first try on the stack, then ever larger buffers from the heap. Each try reads
// the arguments from the beginning. See the header.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <algorithm>
#include <memory>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_StringFormat)";

constexpr int STACK_SIZE = 512;
constexpr int FIRST_DYNAMIC_SIZE = 1024;
constexpr int LAST_DYNAMIC_SIZE = 50 * 1024; // twice this is what the report names

} // namespace

// One try: a buffer, and what came of it, as the C function for this would answer.
class StringC::FormatTryC
{
public:
    FormatTryC(wchar_t* buffer, int size, const wchar_t* format) noexcept
        : m_out(buffer, static_cast<std::size_t>(size) - 1), m_buffer(buffer), m_format(format)
    {}

    void Run(FormatSourceI& source)
    {
        const bool whole = FormatTo(m_out, m_format, source);
        m_buffer[m_out.Length()] = L'\0';
        m_count = whole ? static_cast<int>(m_out.Length()) : -1;
    }

    int Count() const noexcept { return m_count; }

private:
    FormatOutT<wchar_t> m_out;
    wchar_t* m_buffer;
    const wchar_t* m_format;
    int m_count = -1;
};

void StringC::OfRow(const void* arguments, FormatTryC& attempt)
{
    const auto* const row = static_cast<const ArgumentRowT*>(arguments);
    FormatArgumentsC source(row->first, row->count);
    attempt.Run(source);
}

void StringC::OfVarArgs(const void* arguments, FormatTryC& attempt)
{
    VarArgsC source(*static_cast<const VarArgsC*>(arguments)); // a copy, so that the next try begins anew
    attempt.Run(source);
}

void StringC::FormatV(const wchar_t* format, std::va_list arguments)
{
    const VarArgsC source(arguments);
    FormatWith(format, &OfVarArgs, &source);
}

void StringC::FormatWith(const wchar_t* lpsz, SourceUserT use, const void* arguments)
{
    BSS_ASSERT(0 != lpsz);
    if (lpsz == nullptr) return;
    {
        wchar_t buffer[STACK_SIZE];
        FormatTryC attempt(buffer, STACK_SIZE, lpsz);
        use(arguments, attempt);
        if (attempt.Count() >= 0) return Assign({buffer, static_cast<std::size_t>(attempt.Count())});
    }
    int iDynamicSize = FIRST_DYNAMIC_SIZE;
    while (iDynamicSize <= LAST_DYNAMIC_SIZE) {
        const std::unique_ptr<wchar_t[]> buffer(new wchar_t[static_cast<std::size_t>(iDynamicSize)]);
        FormatTryC attempt(buffer.get(), iDynamicSize, lpsz);
        use(arguments, attempt);
        // No text is no result here; the stack has already had it.
        if (attempt.Count() > 0) return Assign({buffer.get(), static_cast<std::size_t>(attempt.Count())});
        const bool last = iDynamicSize == LAST_DYNAMIC_SIZE;
        iDynamicSize = last ? 2 * iDynamicSize : std::min(2 * iDynamicSize, LAST_DYNAMIC_SIZE);
    }
    BSS_ASSERT(iDynamicSize < (100 * 1024));
}

} // namespace BSS::UTI
