// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Changing a string. A string that shares its block, and any change that makes the text longer than it may
// hold, gets a new block; the rest is done in place. A text that is put in may be part of the string itself.
// See the header.
#include "Bss/Bss_Err/BSS_ERR_Report.h"
#include "Bss/Bss_Uti/BSS_UTI_CaseMap.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <algorithm>
#include <cwchar>

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_StringEdit)";

bool IsText(const wchar_t* lpsz)
{
    BSS_ASSERT(0 != lpsz);
    return lpsz != nullptr;
}

} // namespace

void StringC::Empty() noexcept
{
    *this = StringC();
}

void StringC::SetAt(std::int32_t nIndex, wchar_t character)
{
    if (!IsInside(nIndex)) return;
    const std::size_t length = View().size();
    Own(length + 1, length)[nIndex] = character;
}

// Behind the end, in place when there is room. The text may be a part of this one, even behind a block that
// goes.
void StringC::AppendChars(const wchar_t* text, std::size_t count)
{
    if (count == 0) return;
    const std::size_t length = View().size();
    const std::size_t needed = static_cast<std::size_t>(CheckedLength(length + count)) + 1;
    if (m_pBlock->IsUnshared() && needed <= m_pBlock->Capacity()) {
        wchar_t* const own = m_pBlock->Text();
        std::wmemmove(own + length, text, count);
        own[length + count] = L'\0';
        return;
    }
    StringC longer(*this);
    wchar_t* const own = longer.Own(TextBlockC::GrownCapacity(needed), length);
    std::wmemcpy(own + length, text, count);
    own[length + count] = L'\0';
    *this = static_cast<StringC&&>(longer);
}

StringC& StringC::Append(const wchar_t* lpsz)
{
    if (IsText(lpsz)) AppendChars(lpsz, std::wcslen(lpsz));
    return *this;
}

StringC& StringC::Append(const StringC& other)
{
    if (IsEmpty()) return *this = other;
    const StringC held(other);
    AppendChars(held.Text(), held.View().size());
    return *this;
}

StringC& StringC::Append(wchar_t character)
{
    AppendChars(&character, character != L'\0' ? 1 : 0);
    return *this;
}

std::int32_t StringC::Insert(std::int32_t nIndex, const wchar_t* lpsz)
{
    if (IsText(lpsz) && IsInsideOrEnd(nIndex) && *lpsz != L'\0') {
        std::wstring text(View());
        Assign(text.insert(static_cast<std::size_t>(nIndex), lpsz));
    }
    return GetLength();
}

std::int32_t StringC::Insert(std::int32_t nIndex, wchar_t character)
{
    const wchar_t text[] = {character, L'\0'};
    return Insert(nIndex, text);
}

std::int32_t StringC::Delete(std::int32_t nIndex, std::int32_t nCount)
{
    if (IsInsideOrEnd(nIndex) && nCount > 0) {
        const std::size_t length = View().size();
        const auto at = static_cast<std::size_t>(nIndex);
        const std::size_t count = std::min(static_cast<std::size_t>(nCount), length - at);
        if (count > 0) {
            wchar_t* const text = Own(length + 1, length);
            std::wmemmove(text + at, text + at + count, length - at - count + 1);
        }
    }
    return GetLength();
}

std::int32_t StringC::Remove(wchar_t character)
{
    const std::wstring_view text = View();
    const auto count = character == L'\0' ? 0 : std::count(text.begin(), text.end(), character);
    if (count == 0) return 0;
    const std::size_t length = text.size();
    wchar_t* const own = Own(length + 1, length);
    *std::remove(own, own + length, character) = L'\0';
    return static_cast<std::int32_t>(count);
}

std::int32_t StringC::Replace(const wchar_t* lpszOld, const wchar_t* lpszNew)
{
    if (!IsText(lpszOld) || !IsText(lpszNew) || *lpszOld == L'\0') return 0;
    const std::wstring_view old(lpszOld);
    const std::wstring_view text = View();
    std::wstring made;
    std::int32_t nCount = 0;
    std::size_t at = 0;
    for (std::size_t found = text.find(old); found != std::wstring_view::npos; found = text.find(old, at)) {
        made.append(text, at, found - at).append(lpszNew);
        at = found + old.size();
        ++nCount;
    }
    if (nCount > 0) Assign(made.append(text, at));
    return nCount;
}

std::int32_t StringC::Replace(wchar_t oldCharacter, wchar_t newCharacter)
{
    const wchar_t old[] = {oldCharacter, L'\0'};
    const wchar_t replacement[] = {newCharacter, L'\0'};
    return Replace(old, replacement);
}

StringC& StringC::TrimLeft(const wchar_t* lpsz)
{
    if (IsText(lpsz)) {
        const std::size_t first = std::min(View().find_first_not_of(lpsz), View().size());
        Delete(0, static_cast<std::int32_t>(first));
    }
    return *this;
}

StringC& StringC::TrimRight(const wchar_t* lpsz)
{
    if (IsText(lpsz)) {
        const std::size_t end = View().find_last_not_of(lpsz) + 1; // none: 0
        Delete(static_cast<std::int32_t>(end), GetLength());
    }
    return *this;
}

StringC& StringC::Trim(const wchar_t* lpsz)
{
    return IsText(lpsz) ? TrimRight(lpsz).TrimLeft(lpsz) : *this;
}

StringC& StringC::MakeUpper()
{
    const std::size_t length = View().size();
    if (length > 0) {
        wchar_t* const text = Own(length + 1, length);
        std::transform(text, text + length, text, &ToUpperCase);
    }
    return *this;
}

StringC& StringC::MakeLower()
{
    const std::size_t length = View().size();
    if (length > 0) {
        wchar_t* const text = Own(length + 1, length);
        std::transform(text, text + length, text, &ToLowerCase);
    }
    return *this;
}

StringC operator+(const StringC& left, const StringC& right)
{
    StringC sum(left);
    sum += right;
    return sum;
}

StringC operator+(const StringC& left, const wchar_t* right)
{
    StringC sum(left);
    sum += right;
    return sum;
}

StringC operator+(const wchar_t* left, const StringC& right)
{
    StringC sum;
    sum += left;
    sum += right;
    return sum;
}

} // namespace BSS::UTI
