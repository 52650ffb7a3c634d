// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The engine. It walks the format once, takes each conversion apart, asks the source for what it needs, and
// puts it out piece by piece. Nothing it puts out is ever read as format again, and the walk ends when the
// output is full, so a hostile format costs no more than the output has room for, and a look for its end.
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatNumber.h"
#include "Bss/Bss_Uti/BSS_UTI_FormatSpec.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace BSS::UTI {

namespace {

// What stands for a null text.
template<typename CharT>
constexpr CharT NOTHING[] = {'(', 'n', 'u', 'l', 'l', ')', 0};

template<typename TextT>
std::size_t BoundedLength(const TextT* text, std::size_t most) noexcept
{
    if (most == std::numeric_limits<std::size_t>::max()) return std::char_traits<TextT>::length(text);
    std::size_t length = 0;
    while (length < most && text[length] != 0)
        ++length;
    return length;
}

// At most `most` units of the text, and never half a character.
std::string NarrowOf(std::wstring_view text, std::size_t most)
{
    std::string narrow;
    const wchar_t* at = text.data();
    const wchar_t* const end = at + text.size();
    while (at != end) {
        char32_t value = 0;
        at += HAL::DecodeWide(at, end, value);
        std::string character;
        HAL::AppendUtf8(character, value);
        if (narrow.size() + character.size() > most) break;
        narrow += character;
    }
    return narrow;
}

// SourceT is FormatSourceI, or a final class whose operations are then called directly.
template<typename CharT, typename SourceT>
class FormatterT
{
public:
    using OutT = FormatOutT<CharT>;
    using SpecT = FormatSpecT<CharT>;

    FormatterT(OutT& out, SourceT& source) noexcept : m_out(out), m_source(source) {}

    void Run(const CharT* at)
    {
        const CharT* const end = at + std::char_traits<CharT>::length(at);
        for (;;) {
            at = RunQuickly(at, end);
            at = m_out.PutPlain(at, end);
            if (at == end || m_out.IsCut()) return;
            at = Conversion(at);
        }
    }

private:
    // The conversions that nearly all formats are made of, when they have neither width nor anything else,
    // and the text between them, as long as there is room for the longest number. Stops in front of anything
    // else, of which nothing is taken or put out. Where the next character goes is kept in a register: a
    // place in memory that each piece reads right after the last one has stored it makes them wait for one
    // another.
    const CharT* RunQuickly(const CharT* from, const CharT* const fromEnd)
    {
        CharT* to = m_out.At();
        for (;;) {
            CharT* const end = m_out.End(); // a text may have made room
            OutT::CopyPlain(from, fromEnd, to, end);
            const bool room = end - to > static_cast<std::ptrdiff_t>(MAX_DECIMAL_32);
            CharT* const next = room && from != fromEnd ? QuickConversion(from[1], to) : nullptr;
            if (next == nullptr) break;
            to = next;
            from += 2;
        }
        m_out.Advance(to);
        return from;
    }

    // Null, with nothing taken, for what is not one of them.
    CharT* QuickConversion(CharT letter, CharT* to)
    {
        std::uint64_t value = 0;
        switch (letter) {
        case 'd': {
            if (!m_source.TakeInteger(4, value)) return nullptr;
            const auto pattern = static_cast<std::uint32_t>(value);
            const bool negative = static_cast<std::int32_t>(pattern) < 0;
            *to = '-'; // stays only where it is passed over
            return WriteDecimal(negative ? 0 - pattern : pattern, to + (negative ? 1 : 0));
        }
        case 'u':
            if (!m_source.TakeInteger(4, value)) return nullptr;
            return WriteDecimal(static_cast<std::uint32_t>(value), to);
        case 's': {
            const CharT* text = nullptr;
            if (!TakeOwnText(text)) return nullptr;
            if (text == nullptr) text = NOTHING<CharT>;
            const std::size_t length = std::char_traits<CharT>::length(text);
            if (length <= static_cast<std::size_t>(m_out.End() - to)) return std::copy_n(text, length, to);
            m_out.Advance(to);
            m_out.Put(text, length);
            return m_out.At();
        }
        default:
            return nullptr;
        }
    }

    bool TakeOwnText(const char*& text) { return m_source.TakeNarrowText(text); }
    bool TakeOwnText(const wchar_t*& text) { return m_source.TakeWideText(text); }

    // Handles what begins at the percent sign; returns where plain text goes on.
    const CharT* Conversion(const CharT* begin)
    {
        SpecT spec;
        FormatSpecReaderT<CharT, SourceT> reader(begin + 1, m_source);
        const bool read = reader.Read(spec);
        const CharT* const letter = reader.Position();
        if (read && spec.letter == '%') return m_out.Put('%'), letter + 1;
        if (read && Convert(spec)) return letter + 1;
        // As it stands: up to the letter, which then is plain text or begins a conversion of its own.
        const bool known = IsLetter(*letter);
        const CharT* const end = known ? letter + 1 : letter;
        m_out.Put(begin, static_cast<std::size_t>(end - begin));
        return end;
    }

    static bool IsLetter(CharT character) noexcept
    {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    }

    // The conversions that write numbers with a point take the size of a long double, no others do.
    bool FitsItsSize(const SpecT& spec) const noexcept
    {
        static constexpr std::string_view DOUBLES = "eEfFgGaA";
        return spec.size != FormatSize::LongDouble ||
               (spec.letter < 0x80 && DOUBLES.find(static_cast<char>(spec.letter)) != std::string_view::npos);
    }

    // Takes the pointer, so that the arguments behind it stay in step, and writes nothing through it.
    bool SkipCount()
    {
        std::uintptr_t ignored = 0;
        static_cast<void>(m_source.TakePointer(ignored));
        return false;
    }

    bool Convert(const SpecT& spec)
    {
        if (!FitsItsSize(spec)) return false;
        switch (spec.letter) {
        case 'd':
        case 'i':
            return ConvertSigned(spec);
        case 'u':
            return ConvertUnsigned(spec, 10);
        case 'o':
            return ConvertUnsigned(spec, 8);
        case 'x':
        case 'X':
            return ConvertUnsigned(spec, 16);
        case 'c':
            return ConvertCharacter(spec, TakesWide(spec, sizeof(CharT) > 1));
        case 'C':
            return ConvertCharacter(spec, TakesWide(spec, sizeof(CharT) == 1));
        case 's':
            return ConvertText(spec, TakesWide(spec, sizeof(CharT) > 1));
        case 'S':
            return ConvertText(spec, TakesWide(spec, sizeof(CharT) == 1));
        case 'p':
            return ConvertPointer(spec);
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            return ConvertDouble(spec);
        case 'n':
            return SkipCount();
        default:
            return false;
        }
    }

    static bool TakesWide(const SpecT& spec, bool usual) noexcept
    {
        if (spec.size == FormatSize::Short || spec.size == FormatSize::Char) return false;
        return spec.size == FormatSize::Long || spec.size == FormatSize::Wide || usual;
    }

    bool TakeInteger(const SpecT& spec, std::uint64_t& value, unsigned& bits)
    {
        switch (spec.size) {
        case FormatSize::Char:
            bits = 8;
            break;
        case FormatSize::Short:
            bits = 16;
            break;
        case FormatSize::LongLong:
        case FormatSize::Pointer:
            bits = 64;
            break;
        default:
            bits = 32;
            break;
        }
        return m_source.TakeInteger(bits == 64 ? 8 : 4, value);
    }

    bool ConvertSigned(const SpecT& spec)
    {
        std::uint64_t value = 0;
        unsigned bits = 0;
        if (!TakeInteger(spec, value, bits)) return false;
        const unsigned unused = 64 - bits;
        const std::int64_t number = static_cast<std::int64_t>(value << unused) >> unused;
        const auto pattern = static_cast<std::uint64_t>(number);
        const std::uint64_t magnitude = number < 0 ? 0 - pattern : pattern;
        const IntegerDigitsC digits(magnitude, 10, false);
        PutInteger(spec, SignOf(spec, number < 0), digits.View(), magnitude == 0);
        return true;
    }

    bool ConvertUnsigned(const SpecT& spec, unsigned base)
    {
        std::uint64_t value = 0;
        unsigned bits = 0;
        if (!TakeInteger(spec, value, bits)) return false;
        value &= std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
        IntegerDigitsC digits(value, base, spec.letter == 'X');
        if (spec.alternate && base == 8 && value != 0) digits.PutInFront('0');
        const bool prefixed = spec.alternate && base == 16 && value != 0;
        const bool keepsZero = spec.alternate && base == 8; // also with a precision of 0
        PutInteger(spec, prefixed ? (spec.letter == 'X' ? "0X" : "0x") : "", digits.View(),
                   value == 0 && !keepsZero);
        return true;
    }

    bool ConvertPointer(SpecT spec)
    {
        std::uintptr_t value = 0;
        if (!m_source.TakePointer(value)) return false;
        spec.precision = 2 * static_cast<int>(sizeof value);
        PutInteger(spec, "", IntegerDigitsC(value, 16, true).View(), false);
        return true;
    }

    bool ConvertDouble(const SpecT& spec)
    {
        double value = 0;
        const bool taken =
            spec.size == FormatSize::LongDouble ? m_source.TakeLongDouble(value) : m_source.TakeDouble(value);
        if (!taken) return false;
        const std::string digits =
            DoubleDigits(value, static_cast<char>(spec.letter), spec.precision, spec.alternate);
        const bool zeros = spec.zero && !spec.left && std::isfinite(value);
        std::string sign(SignOf(spec, std::signbit(value)));
        std::string_view body = digits;
        if (body.starts_with("0x") || body.starts_with("0X")) { // zeros go behind the prefix
            sign += body.substr(0, 2);
            body.remove_prefix(2);
        }
        PutNumber(spec, sign, zeros ? Missing(spec, sign.size() + body.size()) : 0, body);
        return true;
    }

    bool ConvertCharacter(const SpecT& spec, bool wide)
    {
        std::uint32_t value = 0;
        if (!m_source.TakeCharacter(value)) return false;
        std::basic_string<CharT> text;
        if (wide == (sizeof(CharT) > 1)) {
            text.push_back(static_cast<CharT>(value));
        } else if constexpr (sizeof(CharT) == 1) {
            const auto character = static_cast<wchar_t>(value);
            text = HAL::Utf8FromWide(std::wstring_view(&character, 1));
        } else {
            const auto character = static_cast<char>(value);
            text = HAL::WideFromUtf8(std::string_view(&character, 1));
        }
        PutPadded(spec, text);
        return true;
    }

    bool ConvertText(const SpecT& spec, bool wide)
    {
        const std::size_t most = spec.precision < 0 ? std::numeric_limits<std::size_t>::max()
                                                    : static_cast<std::size_t>(spec.precision);
        const char* narrowText = nullptr;
        const wchar_t* wideText = nullptr;
        if (!(wide ? m_source.TakeWideText(wideText) : m_source.TakeNarrowText(narrowText))) return false;
        if (wide) {
            PutText(spec, wideText, most);
        } else {
            PutText(spec, narrowText, most);
        }
        return true;
    }

    template<typename TextT>
    void PutText(const SpecT& spec, const TextT* text, std::size_t most)
    {
        if (text == nullptr) text = NOTHING<TextT>;
        const std::basic_string_view<TextT> units(text, BoundedLength(text, most));
        if constexpr (sizeof(TextT) == sizeof(CharT)) {
            PutPadded(spec, units);
        } else if constexpr (sizeof(CharT) == 1) {
            PutPadded(spec, NarrowOf(units, most));
        } else {
            PutPadded(spec, HAL::WideFromUtf8(units));
        }
    }

    static std::string_view SignOf(const SpecT& spec, bool negative) noexcept
    {
        if (negative) return "-";
        if (spec.plus) return "+";
        return spec.space ? " " : "";
    }

    // How many characters the width still asks for.
    static std::size_t Missing(const SpecT& spec, std::size_t have) noexcept
    {
        const auto width = static_cast<std::size_t>(spec.width);
        return width > have ? width - have : 0;
    }

    void PutInteger(const SpecT& spec, std::string_view prefix, std::string_view digits, bool isZero)
    {
        if (spec.precision == 0 && isZero) digits = {};
        std::size_t zeros = 0;
        if (spec.precision >= 0) {
            const auto wanted = static_cast<std::size_t>(spec.precision);
            zeros = wanted > digits.size() ? wanted - digits.size() : 0;
        } else if (spec.zero && !spec.left) {
            zeros = Missing(spec, prefix.size() + digits.size());
        }
        PutNumber(spec, prefix, zeros, digits);
    }

    void PutNumber(const SpecT& spec, std::string_view prefix, std::size_t zeros, std::string_view digits)
    {
        const std::size_t spaces = Missing(spec, prefix.size() + zeros + digits.size());
        if (!spec.left) m_out.Fill(' ', spaces);
        m_out.PutAscii(prefix.data(), prefix.size());
        m_out.Fill('0', zeros);
        m_out.PutAscii(digits.data(), digits.size());
        if (spec.left) m_out.Fill(' ', spaces);
    }

    void PutPadded(const SpecT& spec, std::basic_string_view<CharT> text)
    {
        const std::size_t padding = Missing(spec, text.size());
        if (!spec.left) m_out.Fill(spec.zero ? '0' : ' ', padding);
        m_out.Put(text.data(), text.size());
        if (spec.left) m_out.Fill(' ', padding);
    }

    OutT& m_out;
    SourceT& m_source;
};

template<typename CharT>
bool FormatEither(FormatOutT<CharT>& out, const CharT* format, FormatSourceI& source)
{
    if (format == nullptr) format = NOTHING<CharT>;
    if (FormatArgumentsC* const typed = source.AsTypedArguments()) {
        FormatterT<CharT, FormatArgumentsC>(out, *typed).Run(format);
    } else {
        FormatterT<CharT, FormatSourceI>(out, source).Run(format);
    }
    return !out.IsCut();
}

template<typename CharT>
std::basic_string<CharT> FormatVarArgs(const CharT* format, std::va_list arguments)
{
    VarArgsC source(arguments);
    std::basic_string<CharT> text;
    AppendFormat(text, FORMAT_MAX_CHARS, format, source);
    return text;
}

} // namespace

template<typename CharT>
bool AppendFormat(std::basic_string<CharT>& out, std::size_t limit, const CharT* format,
                  FormatSourceI& source)
{
    FormatStringOutT<CharT> text(out, limit);
    const bool whole = FormatEither<CharT>(text, format, source);
    text.Finish();
    return whole;
}

bool FormatTo(FormatOutT<char>& out, const char* format, FormatSourceI& source)
{
    return FormatEither(out, format, source);
}

bool FormatTo(FormatOutT<wchar_t>& out, const wchar_t* format, FormatSourceI& source)
{
    return FormatEither(out, format, source);
}

template bool AppendFormat<char>(std::string&, std::size_t, const char*, FormatSourceI&);
template bool AppendFormat<wchar_t>(std::wstring&, std::size_t, const wchar_t*, FormatSourceI&);

std::string FormatV(const char* format, std::va_list arguments)
{
    return FormatVarArgs(format, arguments);
}

std::wstring FormatV(const wchar_t* format, std::va_list arguments)
{
    return FormatVarArgs(format, arguments);
}

} // namespace BSS::UTI
