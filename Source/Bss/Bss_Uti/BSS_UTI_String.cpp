// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Here: making, copying, looking, and how a string gets a block of its own.
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"

#include <algorithm>
#include <boost/numeric/conversion/cast.hpp>
#include <cstddef>
#include <cwchar>
#include <utility>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_String)";

void ReportPosition(const char* format, std::int32_t nIndex, std::int32_t nLength)
{
    BSS_PANIC(format, PANIC_TYPE, static_cast<std::uint32_t>(nIndex), static_cast<std::uint32_t>(nLength));
}

} // namespace

std::int32_t CheckedLength(std::size_t length)
{
    return boost::numeric_cast<std::int32_t>(length);
}

StringC::StringC(const wchar_t* lpsz)
    : m_pBlock(lpsz == nullptr || *lpsz == L'\0' ? TextBlockC::AcquireEmpty() : TextBlockC::Make(lpsz))
{}

StringC::StringC(std::wstring_view text)
    : StringC(text.empty() ? TextBlockC::AcquireEmpty()
                           : TextBlockC::Make(text.data(), std::min(text.find(L'\0'), text.size())))
{}

StringC::StringC(wchar_t character, std::int32_t nCount)
    : StringC(std::wstring(static_cast<std::size_t>(std::max(nCount, 0)), character))
{}

StringC& StringC::operator=(const StringC& other) noexcept
{
    StringC copy(other);
    std::swap(m_pBlock, copy.m_pBlock);
    return *this;
}

StringC& StringC::operator=(StringC&& other) noexcept
{
    std::swap(m_pBlock, other.m_pBlock);
    return *this;
}

StringC& StringC::operator=(const wchar_t* lpsz)
{
    BSS_ASSERT(0 != lpsz);
    if (lpsz != nullptr) Assign(lpsz);
    return *this;
}

std::int32_t StringC::GetLength() const
{
    return CheckedLength(std::wcslen(Text()));
}

std::wstring_view StringC::View() const
{
    return {Text(), static_cast<std::size_t>(GetLength())};
}

bool StringC::IsInside(std::int32_t nIndex) const
{
    const std::int32_t nLength = GetLength();
    if (nIndex < nLength && nIndex >= 0) return true;
    ReportPosition("nIndex < GetLength() && nIndex >= 0:%lx, %lx", nIndex, nLength);
    return false;
}

bool StringC::IsInsideOrEnd(std::int32_t nIndex) const
{
    const std::int32_t nLength = GetLength();
    if (nIndex <= nLength && nIndex >= 0) return true;
    ReportPosition("nIndex <= GetLength() && nIndex >= 0:%lx, %lx", nIndex, nLength);
    return false;
}

wchar_t StringC::GetAt(std::int32_t nIndex) const
{
    return IsInside(nIndex) ? Text()[nIndex] : L'\0';
}

void StringC::Assign(std::wstring_view text)
{
    StringC made(text);
    std::swap(m_pBlock, made.m_pBlock);
}

// The text of a block that nobody else shares, with room for `capacity` characters, terminator included.
wchar_t* StringC::Own(std::size_t capacity, std::size_t length)
{
    if (!m_pBlock->IsUnshared()) {
        TextBlockC* const own = TextBlockC::Make(Text(), length);
        m_pBlock->Release();
        m_pBlock = own;
    }
    if (m_pBlock->Capacity() < capacity) m_pBlock->Grow(capacity, length);
    return m_pBlock->Text();
}

bool operator==(const StringC& left, const StringC& right) noexcept
{
    return left.SharesBlockWith(right) || std::wcscmp(left.Text(), right.Text()) == 0;
}

bool operator==(const StringC& left, const wchar_t* right)
{
    return left.Compare(right) == 0;
}

bool operator<(const StringC& left, const StringC& right) noexcept
{
    return std::wcscmp(left.Text(), right.Text()) < 0;
}

} // namespace BSS::UTI
