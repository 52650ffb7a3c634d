// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Upper and lower case of single characters, the same on every platform and in every locale. Letters whose
// other form is several characters, or is not the only one, stay as they are. Safe from any thread.
#pragma once

namespace BSS::UTI {

wchar_t ToLowerCase(wchar_t character) noexcept;
wchar_t ToUpperCase(wchar_t character) noexcept;

} // namespace BSS::UTI
