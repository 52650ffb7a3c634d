// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_UnicodeStringTools.h"

#include "Bss/Bss_Uti/BSS_UTI_UnicodeConversion.h"

namespace BSS::UTI {

namespace {

constexpr SystemConversionT<char, wchar_t> TO_WIDE = &HAL::NarrowToWide;
constexpr SystemConversionT<wchar_t, char> TO_NARROW = &HAL::WideToNarrow;

} // namespace

int UnicodeStringTools::SystemToWide(const char* pszSource, wchar_t* pszDestination, int iDestinationLength)
{
    return ConvertSystem(TO_WIDE, pszSource, pszDestination, iDestinationLength);
}

int UnicodeStringTools::WideToSystem(const wchar_t* pszSource, char* pszDestination, int iDestinationLength)
{
    return ConvertSystem(TO_NARROW, pszSource, pszDestination, iDestinationLength);
}

int UnicodeStringTools::Utf8ToWide(const char* pszSource, wchar_t* pszDestination, int iDestinationLength)
{
    return ConvertUtf8(TO_WIDE, pszSource, pszDestination, iDestinationLength);
}

int UnicodeStringTools::WideToUtf8(const wchar_t* pszSource, char* pszDestination, int iDestinationLength)
{
    return ConvertUtf8(TO_NARROW, pszSource, pszDestination, iDestinationLength);
}

int UnicodeStringTools::NarrowToWide(std::uint32_t codePage, const char* pszSource, int iSourceLength,
                                     wchar_t* pszDestination, int iDestinationLength)
{
    HAL::CodePageError error = HAL::CodePageError::None;
    return ConvertAny(TO_WIDE, codePage, pszSource, iSourceLength, pszDestination, iDestinationLength, error);
}

int UnicodeStringTools::WideToNarrow(std::uint32_t codePage, const wchar_t* pszSource, int iSourceLength,
                                     char* pszDestination, int iDestinationLength)
{
    HAL::CodePageError error = HAL::CodePageError::None;
    return ConvertAny(TO_NARROW, codePage, pszSource, iSourceLength, pszDestination, iDestinationLength,
                      error);
}

} // namespace BSS::UTI
