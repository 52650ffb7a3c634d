// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Comparing, searching and parts of a string. See the header.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Uti/BSS_UTI_CaseMap.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <algorithm>
#include <cwchar>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_StringSearch)";

// Reports a null text and puts the empty one in its place.
std::wstring_view Checked(const wchar_t* lpsz)
{
    BSS_ASSERT(0 != lpsz);
    return lpsz != nullptr ? std::wstring_view(lpsz) : std::wstring_view();
}

std::int32_t Position(std::size_t found)
{
    return found == std::wstring_view::npos ? -1 : static_cast<std::int32_t>(found);
}

} // namespace

int StringC::Compare(const wchar_t* lpsz) const
{
    return std::wcscmp(Text(), Checked(lpsz).empty() ? L"" : lpsz);
}

int StringC::CompareNoCase(const wchar_t* lpsz) const
{
    const std::wstring_view other = Checked(lpsz);
    const std::wstring_view own = View();
    const std::size_t common = std::min(own.size(), other.size());
    for (std::size_t i = 0; i < common; ++i) {
        const wchar_t left = ToLowerCase(own[i]);
        const wchar_t right = ToLowerCase(other[i]);
        if (left != right) return left < right ? -1 : 1;
    }
    if (own.size() == other.size()) return 0;
    return own.size() < other.size() ? -1 : 1;
}

std::int32_t StringC::Find(const wchar_t* lpsz, std::int32_t nStart) const
{
    const std::wstring_view wanted = Checked(lpsz);
    if (lpsz == nullptr || !IsInsideOrEnd(nStart)) return -1;
    return Position(View().find(wanted, static_cast<std::size_t>(nStart)));
}

std::int32_t StringC::Find(wchar_t character, std::int32_t nStart) const
{
    if (!IsInsideOrEnd(nStart)) return -1;
    return Position(View().find(character, static_cast<std::size_t>(nStart)));
}

std::int32_t StringC::FindOneOf(const wchar_t* lpsz, std::int32_t nStart) const
{
    const std::wstring_view wanted = Checked(lpsz);
    if (lpsz == nullptr || !IsInsideOrEnd(nStart)) return -1;
    return Position(View().find_first_of(wanted, static_cast<std::size_t>(nStart)));
}

std::int32_t StringC::ReverseFind(const wchar_t* lpsz) const
{
    const std::wstring_view wanted = Checked(lpsz);
    return lpsz == nullptr ? -1 : Position(View().rfind(wanted));
}

std::int32_t StringC::ReverseFind(wchar_t character) const
{
    return Position(View().rfind(character));
}

StringC StringC::Left(std::int32_t nCount) const
{
    const std::int32_t nLength = GetLength();
    if (nCount >= nLength) return *this;
    return StringC(View().substr(0, static_cast<std::size_t>(std::max(nCount, 0))));
}

StringC StringC::Right(std::int32_t nCount) const
{
    const std::int32_t nLength = GetLength();
    if (nCount >= nLength) return *this;
    return StringC(View().substr(static_cast<std::size_t>(nLength - std::max(nCount, 0))));
}

StringC StringC::Mid(std::int32_t nIndex) const
{
    if (!IsInsideOrEnd(nIndex)) return {};
    return nIndex == 0 ? *this : StringC(View().substr(static_cast<std::size_t>(nIndex)));
}

StringC StringC::Mid(std::int32_t nIndex, std::int32_t nCount) const
{
    if (!IsInsideOrEnd(nIndex)) return {};
    if (nIndex == 0) return Left(nCount);
    return StringC(
        View().substr(static_cast<std::size_t>(nIndex), static_cast<std::size_t>(std::max(nCount, 0))));
}

StringC StringC::Tokenize(const wchar_t* lpsz, std::int32_t& nStart) const
{
    const std::wstring_view delimiters = Checked(lpsz);
    if (lpsz == nullptr || !IsInsideOrEnd(nStart)) return nStart = -1, StringC();
    const std::wstring_view text = View();
    const std::size_t begin = text.find_first_not_of(delimiters, static_cast<std::size_t>(nStart));
    if (begin == std::wstring_view::npos) return nStart = -1, StringC();
    const std::size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
    nStart = static_cast<std::int32_t>(std::min(end + 1, text.size()));
    return StringC(text.substr(begin, end - begin));
}

} // namespace BSS::UTI
