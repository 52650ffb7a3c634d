// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"

#include "Bss/Bss_Uti/BSS_UTI_String.h"

#include <cwchar>

namespace BSS::UTI {

bool FormatSourceI::TakeInteger(std::size_t, std::uint64_t&)
{
    return false;
}

bool FormatSourceI::TakeCharacter(std::uint32_t&)
{
    return false;
}

bool FormatSourceI::TakeDouble(double&)
{
    return false;
}

bool FormatSourceI::TakeLongDouble(double& value)
{
    return TakeDouble(value);
}

bool FormatSourceI::TakeNarrowText(const char*&)
{
    return false;
}

bool FormatSourceI::TakeWideText(const wchar_t*&)
{
    return false;
}

bool FormatSourceI::TakePointer(std::uintptr_t&)
{
    return false;
}

FormatSourceI::~FormatSourceI() = default;

FormatArgumentC::FormatArgumentC(const StringC& text) noexcept : FormatArgumentC(text.Text()) {}

FormatArgumentsC::~FormatArgumentsC() = default;

bool FormatArgumentsC::TakeCharacter(std::uint32_t& value)
{
    const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::Integer);
    if (argument != nullptr) value = static_cast<std::uint32_t>(argument->m_integer);
    return argument != nullptr;
}

bool FormatArgumentsC::TakeDouble(double& value)
{
    const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::Double);
    if (argument != nullptr) value = argument->m_double;
    return argument != nullptr;
}

bool FormatArgumentsC::TakeWideText(const wchar_t*& value)
{
    const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::WideText);
    if (argument != nullptr) value = argument->m_wide;
    return argument != nullptr;
}

bool FormatArgumentsC::TakePointer(std::uintptr_t& value)
{
    const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::Pointer);
    if (argument != nullptr) value = reinterpret_cast<std::uintptr_t>(argument->m_pointer);
    return argument != nullptr;
}

VarArgsC::VarArgsC(std::va_list arguments) noexcept
{
    va_copy(m_arguments, arguments);
}

VarArgsC::VarArgsC(const VarArgsC& other) noexcept : FormatSourceI(other)
{
    va_copy(m_arguments, const_cast<VarArgsC&>(other).m_arguments); // reads it, whatever its type says
}

VarArgsC::~VarArgsC()
{
    va_end(m_arguments);
}

bool VarArgsC::TakeInteger(std::size_t bytes, std::uint64_t& value)
{
    value = bytes == 8 ? va_arg(m_arguments, std::uint64_t) : va_arg(m_arguments, std::uint32_t);
    return true;
}

bool VarArgsC::TakeCharacter(std::uint32_t& value)
{
    value = va_arg(m_arguments, std::uint32_t);
    return true;
}

bool VarArgsC::TakeDouble(double& value)
{
    value = va_arg(m_arguments, double);
    return true;
}

bool VarArgsC::TakeLongDouble(double& value)
{
    value = static_cast<double>(va_arg(m_arguments, long double)); // what the caller's compiler has passed
    return true;
}

bool VarArgsC::TakeNarrowText(const char*& value)
{
    value = va_arg(m_arguments, const char*);
    return true;
}

bool VarArgsC::TakeWideText(const wchar_t*& value)
{
    value = va_arg(m_arguments, const wchar_t*);
    return true;
}

bool VarArgsC::TakePointer(std::uintptr_t& value)
{
    value = reinterpret_cast<std::uintptr_t>(va_arg(m_arguments, const void*));
    return true;
}

} // namespace BSS::UTI
