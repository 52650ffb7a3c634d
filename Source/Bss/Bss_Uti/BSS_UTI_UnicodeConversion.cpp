// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_UnicodeConversion.h"

#include "Bss/Bss_Err/BSS_ERR_Report.h"

namespace BSS::UTI {

namespace {

constexpr char BSS_SOURCE_NAME[] = R"(..\..\Source\Bss\Bss_Uti\BSS_UTI_UnicodeStringTools)";

template<typename CharT>
void MakeEmpty(CharT* pszDestination, int iDestinationLength) noexcept
{
    if (pszDestination != nullptr && iDestinationLength >= 1) *pszDestination = CharT(0);
}

} // namespace

template<typename FromT, typename ToT>
int ConvertAny(SystemConversionT<FromT, ToT> system, std::uint32_t codePage, const FromT* pszSource,
               int iSourceLength, ToT* pszDestination, int iDestinationLength, HAL::CodePageError& error)
{
    BSS_ASSERT(pszSource);
    BSS_ASSERT(iSourceLength >= -1);
    BSS_ASSERT(iDestinationLength >= 0);
    const int nRet = system(codePage, pszSource, iSourceLength, pszDestination, iDestinationLength, error);
    BSS_ASSERT(((0 == iSourceLength) && (0 == nRet)) || (nRet >= 0));
    return nRet;
}

template<typename FromT, typename ToT>
int ConvertSystem(SystemConversionT<FromT, ToT> system, const FromT* pszSource, ToT* pszDestination,
                  int iDestinationLength)
{
    HAL::CodePageError error = HAL::CodePageError::None;
    const int count =
        ConvertAny(system, HAL::CODE_PAGE_SYSTEM, pszSource, -1, pszDestination, iDestinationLength, error);
    if (count >= 1) return count;
    if (error == HAL::CodePageError::TooSmall) {
        ERR::AssertFailed("The data area passed to a system call is too small.", 0, 0, BSS_SOURCE_NAME,
                          __LINE__);
    }
    MakeEmpty(pszDestination, iDestinationLength);
    return 0;
}

template<typename FromT, typename ToT>
int ConvertUtf8(SystemConversionT<FromT, ToT> system, const FromT* pszSource, ToT* pszDestination,
                int iDestinationLength)
{
    BSS_ASSERT(pszSource);
    HAL::CodePageError error = HAL::CodePageError::None;
    const int count =
        ConvertAny(system, HAL::CODE_PAGE_UTF8, pszSource, -1, pszDestination, iDestinationLength, error);
    if (pszSource != nullptr && count >= 1) return count;
    BSS_ASSERT(false);
    MakeEmpty(pszDestination, iDestinationLength);
    return -1;
}

BSS_UTI_CONVERSIONS(, char, wchar_t);
BSS_UTI_CONVERSIONS(, wchar_t, char);

} // namespace BSS::UTI
