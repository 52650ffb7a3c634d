// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where the formatter takes its arguments from. An operation that returns false has nothing of that kind to
// give; the conversion that asked for it is then printed as it stands and nothing is consumed. Two sources
// are given: typed arguments, which cannot be misread whatever the format says, and the arguments of a C
// function. Knows nothing of formats. A source belongs to one thread.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace BSS::UTI {

class FormatArgumentsC;
class StringC;

class FormatSourceI
{
public:
    /// The next argument as an integer of `bytes` (4 or 8) bytes; only that many low bytes of `value` count.
    virtual bool TakeInteger(std::size_t bytes, std::uint64_t& value);
    virtual bool TakeCharacter(std::uint32_t& value);
    virtual bool TakeDouble(double& value);

    /// The next argument as a long double, made a double. Unless overridden, the same as TakeDouble.
    virtual bool TakeLongDouble(double& value);
    virtual bool TakeNarrowText(const char*& value);
    virtual bool TakeWideText(const wchar_t*& value);
    virtual bool TakePointer(std::uintptr_t& value);

    /// The source itself if it is a row of typed arguments, which the formatter reads without virtual calls;
    /// else null.
    FormatArgumentsC* AsTypedArguments() noexcept;
    virtual ~FormatSourceI();

protected:
    FormatSourceI() = default;

    /// For FormatArgumentsC only.
    explicit FormatSourceI(bool bTyped) noexcept : m_bTyped(bTyped) {}
    FormatSourceI(const FormatSourceI&) = default;
    FormatSourceI& operator=(const FormatSourceI&) = delete;

private:
    const bool m_bTyped = false;
};

/// One typed argument. Texts are not copied and must live until the text is made.
class FormatArgumentC
{
public:
    enum class Kind
    {
        Integer,
        Double,
        NarrowText,
        WideText,
        Pointer
    };

    template<typename T>
    requires std::is_integral_v<T> || std::is_enum_v<T> FormatArgumentC(T value)
    noexcept : m_kind(Kind::Integer), m_integer(static_cast<std::uint64_t>(value)) {}
    template<typename T>
    requires std::is_floating_point_v<T> FormatArgumentC(T value)
    noexcept : m_kind(Kind::Double), m_double(static_cast<double>(value)) {}
    FormatArgumentC(const char* text) noexcept : m_kind(Kind::NarrowText), m_narrow(text) {}
    FormatArgumentC(const wchar_t* text) noexcept : m_kind(Kind::WideText), m_wide(text) {}
    FormatArgumentC(const std::string& text) noexcept : FormatArgumentC(text.c_str()) {}
    FormatArgumentC(const std::wstring& text) noexcept : FormatArgumentC(text.c_str()) {}
    FormatArgumentC(const StringC& text) noexcept;
    FormatArgumentC(const void* pointer) noexcept : m_kind(Kind::Pointer), m_pointer(pointer) {}

private:
    friend class FormatArgumentsC;

    Kind m_kind;
    union {
        std::uint64_t m_integer; // sign-extended
        double m_double;
        const char* m_narrow;
        const wchar_t* m_wide;
        const void* m_pointer;
    };
};

/// Typed arguments in a row. Refers to the caller's array.
class FormatArgumentsC final : public FormatSourceI
{
public:
    FormatArgumentsC(const FormatArgumentC* first, std::size_t count) noexcept
        : FormatSourceI(true), m_next(first), m_end(first + count)
    {}
    bool TakeInteger(std::size_t, std::uint64_t& value) override
    {
        const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::Integer);
        if (argument != nullptr) value = argument->m_integer;
        return argument != nullptr;
    }
    bool TakeCharacter(std::uint32_t& value) override;
    bool TakeDouble(double& value) override;
    bool TakeNarrowText(const char*& value) override
    {
        const FormatArgumentC* const argument = Next(FormatArgumentC::Kind::NarrowText);
        if (argument != nullptr) value = argument->m_narrow;
        return argument != nullptr;
    }
    bool TakeWideText(const wchar_t*& value) override;
    bool TakePointer(std::uintptr_t& value) override;
    ~FormatArgumentsC() override;

private:
    const FormatArgumentC* Next(FormatArgumentC::Kind kind) noexcept
    {
        return m_next != m_end && m_next->m_kind == kind ? m_next++ : nullptr;
    }

    const FormatArgumentC* m_next;
    const FormatArgumentC* m_end;
};

inline FormatArgumentsC* FormatSourceI::AsTypedArguments() noexcept
{
    return m_bTyped ? static_cast<FormatArgumentsC*>(this) : nullptr;
}

/// The arguments of a C function. The format must fit them, as with printf.
class VarArgsC final : public FormatSourceI
{
public:
    /// Works on a copy; the caller ends its own list.
    explicit VarArgsC(std::va_list arguments) noexcept;
    bool TakeInteger(std::size_t bytes, std::uint64_t& value) override;
    bool TakeCharacter(std::uint32_t& value) override;
    bool TakeDouble(double& value) override;
    bool TakeLongDouble(double& value) override;
    bool TakeNarrowText(const char*& value) override;
    bool TakeWideText(const wchar_t*& value) override;
    bool TakePointer(std::uintptr_t& value) override;
    ~VarArgsC() override;

    /// A source that begins where the other one stands.
    VarArgsC(const VarArgsC& other) noexcept;
    VarArgsC& operator=(const VarArgsC&) = delete;

private:
    std::va_list m_arguments;
};

} // namespace BSS::UTI
