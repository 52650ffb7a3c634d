// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The framework's string: wide text in a shared, counted block, so that a copy costs one increment. A string
// that is changed while others share its block gets a block of its own first. Comparing, searching and
// changing case follow the code units and no locale; case is known of characters that are one unit.
//
// Positions count characters from 0 and are signed, as lengths are. A position that is not allowed is
// reported by a panic, a null text by the assertion "0 != lpsz"; the operation then does nothing, and answers
// what "does nothing" means. Lengths are counted at each call. Operations that make text throw std::bad_alloc
// and leave the string as it was; a text of 2^31 characters or more is refused with
// boost::numeric::positive_overflow.
//
// Distinct strings may be used from different threads even when they share a block; one string by one thread
// at a time, if any of them changes it. Comparisons, conversions and searches are in this header's other
// sources, BSS_UTI_StringSearch, BSS_UTI_StringEdit, BSS_UTI_StringNumber and BSS_UTI_StringFormat.
#pragma once

#include "Bss/Bss_Uti/BSS_UTI_FormatSource.h"
#include "Bss/Bss_Uti/BSS_UTI_TextBlock.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace BSS::UTI {

/// The length of a text as a signed number of 32 bits. Throws boost::numeric::positive_overflow ("bad numeric
/// conversion: positive overflow") for 0x80000000 and more.
std::int32_t CheckedLength(std::size_t length);

/// The integers that are meant as numbers.
template<typename T>
concept FormattedNumberT = std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
                           !std::is_same_v<T, wchar_t> && !std::is_same_v<T, char8_t> &&
                           !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t>;

class StringC
{
public:
    /// The empty string. Null is the empty string too.
    StringC() noexcept : m_pBlock(TextBlockC::AcquireEmpty()) {}
    StringC(const wchar_t* lpsz);
    StringC(std::wstring_view text);
    StringC(const std::wstring& text) : StringC(std::wstring_view(text)) {}
    StringC(wchar_t character, std::int32_t nCount);
    StringC(const StringC& other) noexcept : m_pBlock(other.m_pBlock) { m_pBlock->Acquire(); }
    StringC(StringC&& other) noexcept : m_pBlock(other.m_pBlock)
    {
        other.m_pBlock = TextBlockC::AcquireEmpty();
    }
    ~StringC() { m_pBlock->Release(); }

    /// Texts may be part of this string itself.
    StringC& operator=(const StringC& other) noexcept;
    StringC& operator=(StringC&& other) noexcept;
    StringC& operator=(const wchar_t* lpsz);

    // What is there.

    std::int32_t GetLength() const;
    bool IsEmpty() const noexcept { return *Text() == L'\0'; }

    /// Zero-terminated, valid until the string changes or goes.
    const wchar_t* Text() const noexcept { return static_cast<const TextBlockC*>(m_pBlock)->Text(); }
    std::wstring_view View() const;

    /// Whether both share one block, so that neither has been changed since one was copied.
    bool SharesBlockWith(const StringC& other) const noexcept { return m_pBlock == other.m_pBlock; }
    const TextBlockC& Block() const noexcept { return *m_pBlock; }

    /// The character at 0 to GetLength() - 1; L'\0' elsewhere, after the panic.
    wchar_t GetAt(std::int32_t nIndex) const;
    wchar_t operator[](std::int32_t nIndex) const { return GetAt(nIndex); }

    // Comparing: negative, 0 or positive. Null compares as the empty text, after the assertion.

    int Compare(const wchar_t* lpsz) const;
    int CompareNoCase(const wchar_t* lpsz) const;

    // Searching: a position, or -1.

    /// From position nStart on, 0 to GetLength(). The empty text is found where the search begins.
    std::int32_t Find(const wchar_t* lpsz, std::int32_t nStart = 0) const;
    std::int32_t Find(wchar_t character, std::int32_t nStart = 0) const;
    std::int32_t FindOneOf(const wchar_t* lpsz, std::int32_t nStart = 0) const;

    /// The last occurrence.
    std::int32_t ReverseFind(const wchar_t* lpsz) const;
    std::int32_t ReverseFind(wchar_t character) const;

    // Parts. Counts beyond what is there mean all of it, negative ones nothing.

    StringC Left(std::int32_t nCount) const;
    StringC Right(std::int32_t nCount) const;

    /// From position nIndex on, 0 to GetLength(); empty elsewhere, after the panic.
    StringC Mid(std::int32_t nIndex) const;
    StringC Mid(std::int32_t nIndex, std::int32_t nCount) const;

    /// The next piece between delimiters from position nStart on, which moves behind it. Delimiters in a row
    /// count as one, none makes an empty piece. At the end the answer is empty and nStart is -1.
    StringC Tokenize(const wchar_t* lpsz, std::int32_t& nStart) const;

    // Changing.

    void Empty() noexcept;
    void SetAt(std::int32_t nIndex, wchar_t character);
    StringC& Append(const wchar_t* lpsz);
    StringC& Append(const StringC& other);
    StringC& Append(wchar_t character);
    StringC& operator+=(const wchar_t* lpsz) { return Append(lpsz); }
    StringC& operator+=(const StringC& other) { return Append(other); }
    StringC& operator+=(wchar_t character) { return Append(character); }

    /// Inserts before position nIndex, 0 to GetLength(). The new length.
    std::int32_t Insert(std::int32_t nIndex, const wchar_t* lpsz);
    std::int32_t Insert(std::int32_t nIndex, wchar_t character);

    /// Removes nCount characters from position nIndex on, 0 to GetLength(). The new length.
    std::int32_t Delete(std::int32_t nIndex, std::int32_t nCount = 1);

    /// Removes every such character. How many there were.
    std::int32_t Remove(wchar_t character);

    /// Replaces every occurrence, from the left; what is put in is not searched again. How many there were; 0
    /// when there is nothing to look for.
    std::int32_t Replace(const wchar_t* lpszOld, const wchar_t* lpszNew);
    std::int32_t Replace(wchar_t oldCharacter, wchar_t newCharacter);

    /// Takes white space, or the characters of a text, off an end or both.
    StringC& TrimLeft(const wchar_t* lpsz = WHITE_SPACE);
    StringC& TrimRight(const wchar_t* lpsz = WHITE_SPACE);
    StringC& Trim(const wchar_t* lpsz = WHITE_SPACE);

    /// Every letter that has one other form, in that form; the length stays. Letters whose other form is two
    /// characters, such as the German sharp s, stay.
    StringC& MakeUpper();
    StringC& MakeLower();

    // Formatting. The conversions are those of BSS_UTI_Format.h. A text of more than 51199 characters is
    // reported by the assertion "iDynamicSize < (100 * 1024)" and leaves the string as it was.

    template<typename... Arguments>
    void Format(const wchar_t* format, const Arguments&... arguments)
    {
        const std::array<FormatArgumentC, sizeof...(Arguments)> row{FormatArgumentC(arguments)...};
        const ArgumentRowT typed{row.data(), row.size()};
        FormatWith(format, &OfRow, &typed);
    }

    /// With a C function's arguments, which must fit the format.
    void FormatV(const wchar_t* format, std::va_list arguments);

    // Numbers, as C++ source writes them and in no locale. Reading takes white space around the number and
    // nothing else; false, with the value unchanged, for what is no number, does not fit, or is written with
    // more than 2048 characters. Base 16 reads with or without 0x.

    bool ToNumber(std::int32_t& value, int base = 10) const;
    bool ToNumber(std::uint32_t& value, int base = 10) const;
    bool ToNumber(std::int64_t& value, int base = 10) const;
    bool ToNumber(std::uint64_t& value, int base = 10) const;
    bool ToNumber(double& value) const;

    /// Any integer, but no truth value and no character. Bases 2 to 36; the empty string for any other.
    template<FormattedNumberT NumberT>
    static StringC FromNumber(NumberT value, int base = 10)
    {
        if constexpr (std::is_signed_v<NumberT>) {
            return FromSigned(value, base);
        } else {
            return FromUnsigned(value, base);
        }
    }

    /// The shortest text that reads back as the same number.
    static StringC FromNumber(double value);

private:
    static constexpr wchar_t WHITE_SPACE[] = L" \t\r\n\v\f";

    // How a format gets its arguments, again for each buffer that is tried.
    struct ArgumentRowT
    {
        const FormatArgumentC* first;
        std::size_t count;
    };
    class FormatTryC;
    using SourceUserT = void (*)(const void* arguments, FormatTryC& attempt);

    static StringC FromSigned(std::int64_t value, int base);
    static StringC FromUnsigned(std::uint64_t value, int base);
    explicit StringC(TextBlockC* block) noexcept : m_pBlock(block) {}
    static void OfRow(const void* arguments, FormatTryC& attempt);
    static void OfVarArgs(const void* arguments, FormatTryC& attempt);
    void FormatWith(const wchar_t* format, SourceUserT use, const void* arguments);
    bool IsInside(std::int32_t nIndex) const;
    bool IsInsideOrEnd(std::int32_t nIndex) const;
    void Assign(std::wstring_view text);
    wchar_t* Own(std::size_t capacity, std::size_t length);
    void AppendChars(const wchar_t* text, std::size_t count);

    TextBlockC* m_pBlock;
};

bool operator==(const StringC& left, const StringC& right) noexcept;
bool operator==(const StringC& left, const wchar_t* right);
bool operator<(const StringC& left, const StringC& right) noexcept;
StringC operator+(const StringC& left, const StringC& right);
StringC operator+(const StringC& left, const wchar_t* right);
StringC operator+(const wchar_t* left, const StringC& right);

} // namespace BSS::UTI
