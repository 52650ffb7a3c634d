// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The conversions with their reports, for whatever the system is: the tools give the platform's functions, a
// test gives its own. For BSS_UTI_UnicodeStringTools.cpp and tests only.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_CodePage.h"

#include <cstdint>

namespace BSS::UTI {

/// One of the system's two conversions.
template<typename FromT, typename ToT>
using SystemConversionT = int (*)(std::uint32_t codePage, const FromT* source, int sourceLength,
                                  ToT* destination, int destinationLength, HAL::CodePageError& error);

/// See UnicodeStringTools for each of them.
template<typename FromT, typename ToT>
int ConvertAny(SystemConversionT<FromT, ToT> system, std::uint32_t codePage, const FromT* pszSource,
               int iSourceLength, ToT* pszDestination, int iDestinationLength, HAL::CodePageError& error);

template<typename FromT, typename ToT>
int ConvertSystem(SystemConversionT<FromT, ToT> system, const FromT* pszSource, ToT* pszDestination,
                  int iDestinationLength);

template<typename FromT, typename ToT>
int ConvertUtf8(SystemConversionT<FromT, ToT> system, const FromT* pszSource, ToT* pszDestination,
                int iDestinationLength);

#define BSS_UTI_CONVERSIONS(PREFIX, FROM, TO)                                                                \
    PREFIX template int ConvertAny<FROM, TO>(SystemConversionT<FROM, TO>, std::uint32_t, const FROM*, int,   \
                                             TO*, int, HAL::CodePageError&);                                 \
    PREFIX template int ConvertSystem<FROM, TO>(SystemConversionT<FROM, TO>, const FROM*, TO*, int);         \
    PREFIX template int ConvertUtf8<FROM, TO>(SystemConversionT<FROM, TO>, const FROM*, TO*, int)

BSS_UTI_CONVERSIONS(extern, char, wchar_t);
BSS_UTI_CONVERSIONS(extern, wchar_t, char);

} // namespace BSS::UTI
