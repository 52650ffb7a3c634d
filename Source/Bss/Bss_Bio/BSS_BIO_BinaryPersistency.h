// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A stream of named values in binary form: numbers are little-endian in as many bytes as their type has,
// texts are units of 16 bits. The names are not stored; they say which value is meant where values are shown,
// and the order of the calls is the order in the stream. WriterC stores, ReaderC loads, DecoderC loads and
// shows.
//
// What would pass the end of the bytes throws OverflowExceptionC with RC_BUFFER_BOUNDS and moves nothing. The
// wrong direction is reported by the assertions !"Write not allowed!" and !"Read not allowed!", and does
// nothing: what was to be read is 0. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace BSS::BIO {

class BinaryPersistencyC
{
public:
    virtual ~BinaryPersistencyC();

    template<typename T>
    void write(const char* name, T value)
    {
        static_assert(std::is_integral_v<T> || std::is_enum_v<T>);
        writeNumber(name, static_cast<std::uint64_t>(value), sizeof(T));
    }

    template<typename T>
    T read(const char* name)
    {
        static_assert(std::is_integral_v<T> || std::is_enum_v<T>);
        return static_cast<T>(readNumber(name, sizeof(T)));
    }

    /// The length as a number of 16 bits under this name, then the units of 16 bits, characters beyond them
    /// as surrogate pairs. A text of more than 65535 units is a violation of bounds.
    void writeText(const char* lengthName, const std::wstring& text);
    std::wstring readText(const char* lengthName);

    /// With it on, a number that does not begin at a multiple of its size is reported by the assertion
    /// "0 == position % size". Off at first.
    void setAlignmentCheck(bool bCheck) noexcept { m_bCheckAlignment = bCheck; }

    /// How many bytes have been stored or loaded.
    virtual std::size_t getPosition() const noexcept = 0;

protected:
    BinaryPersistencyC() = default;
    BinaryPersistencyC(const BinaryPersistencyC&) = default;
    BinaryPersistencyC& operator=(const BinaryPersistencyC&) = default;

    virtual void writeBytes(const std::uint8_t* bytes, std::size_t count);
    virtual void readBytes(std::uint8_t* bytes, std::size_t count);

    /// A value has been loaded.
    virtual void onNumber(const char* name, std::uint64_t value, std::size_t size);
    virtual void onText(const char* lengthName, const std::wstring& text);

private:
    void writeNumber(const char* name, std::uint64_t value, std::size_t size);
    std::uint64_t readNumber(const char* name, std::size_t size);
    void checkAlignment(std::size_t size) const;

    bool m_bCheckAlignment = false;
};

} // namespace BSS::BIO
