// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The order is that of what is least likely to fail: should the report itself crash, what
// stands before that is in the file.
//
// Programs are built without frame pointers, and the unwinder of the C library takes locks. Instead the stack
// is searched for addresses of code that stand behind a call instruction: every caller is among them, and now
// and then one of a call that has returned long ago. Memory is read through a pipe, which answers with an
// error where reading it would crash.
#include "Bss/Bss_Hal/BSS_HAL_CrashReport_Posix.h"

#include "Bss/Bss_Hal/BSS_HAL_CrashRegisters_Posix.h"
#include "Bss/Bss_Hal/BSS_HAL_FixedText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

using LineT = FixedTextT<char, 256>;

constexpr std::size_t MAX_STACK_BYTES = std::size_t{256} << 10;
constexpr std::size_t MAX_CALLS = 100;
constexpr std::size_t MAX_RANGES = 1024;
constexpr std::size_t PIECE_BYTES = 512;
constexpr int ADDRESS_DIGITS = 2 * sizeof(std::uintptr_t);

struct RangeT
{
    std::uintptr_t begin;
    std::uintptr_t end;
};

// Not on the stack.
constinit std::array<RangeT, MAX_RANGES> s_code = {};
constinit std::size_t s_nCode = 0;
constinit std::array<char, 4096> s_piece = {};
constinit LineT s_line;

// What cannot be written cannot be helped.
void WriteBytes(int file, const char* bytes, std::size_t count) noexcept
{
    while (count > 0) {
        const ssize_t written = ::write(file, bytes, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

LineT& Line(const char* begin) noexcept
{
    s_line.clear();
    return s_line.add(begin);
}

void AddAddress(LineT& line, std::uintptr_t address) noexcept
{
    line.add("0x").addNumber(address, ADDRESS_DIGITS, 16);
}

void End(int file, LineT& line) noexcept
{
    line.add('\n');
    WriteBytes(file, line.getText(), line.getLength());
}

void WriteLine(int file, const char* text) noexcept
{
    End(file, Line(text));
}

// Memory that may not be there.
class MemoryReaderC
{
public:
    MemoryReaderC() noexcept
    {
        if (::pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) != 0) m_ends[0] = m_ends[1] = -1;
    }
    ~MemoryReaderC()
    {
        for (const int end : m_ends)
            if (end >= 0) ::close(end);
    }
    MemoryReaderC(const MemoryReaderC&) = delete;
    MemoryReaderC& operator=(const MemoryReaderC&) = delete;

    /// All or nothing; 4096 bytes at most.
    bool read(std::uintptr_t address, void* destination, std::size_t count) const noexcept
    {
        std::size_t moved = 0;
        // The bare call: a program may have a checker in front of the usual one.
        const long in = ::syscall(SYS_write, m_ends[1], address, count);
        if (in <= 0) return false;
        while (moved < static_cast<std::size_t>(in)) {
            const ssize_t out = ::read(m_ends[0], static_cast<char*>(destination) + moved, count - moved);
            if (out <= 0) return false;
            moved += static_cast<std::size_t>(out);
        }
        return moved == count;
    }

private:
    int m_ends[2] = {-1, -1};
};

// Reads "begin-end perms ..." of each line, whatever pieces it comes in.
class MapsParserC
{
public:
    void take(char character) noexcept
    {
        if (character == '\n') return endLine();
        if (m_field > 2) return;
        if (character == (m_field == 0 ? '-' : ' ')) {
            ++m_field;
        } else if (m_field == 2) {
            m_bCode = m_bCode || character == 'x';
        } else {
            const auto digit =
                static_cast<std::uintptr_t>(character <= '9' ? character - '0' : character - 'a' + 10);
            std::uintptr_t& number = m_field == 0 ? m_range.begin : m_range.end;
            number = number * 16 + digit;
        }
    }

private:
    void endLine() noexcept
    {
        if (m_bCode && s_nCode < s_code.size()) s_code[s_nCode++] = m_range;
        *this = {};
    }

    RangeT m_range = {0, 0};
    int m_field = 0;
    bool m_bCode = false;
};

template<typename TakeT>
void ReadFile(const char* path, const TakeT& take) noexcept
{
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    for (;;) {
        const ssize_t count = ::read(file, s_piece.data(), s_piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        take(s_piece.data(), static_cast<std::size_t>(count));
    }
    ::close(file);
}

bool IsCode(std::uintptr_t address) noexcept
{
    return std::any_of(s_code.begin(), s_code.begin() + s_nCode, [address](const RangeT& range) {
        return address >= range.begin + CALL_BYTES && address < range.end;
    });
}

bool StandsBehindCall(const MemoryReaderC& memory, std::uintptr_t address) noexcept
{
    std::array<unsigned char, CALL_BYTES> bytes = {};
    return memory.read(address - CALL_BYTES, bytes.data(), bytes.size()) && EndsWithCall(bytes.data());
}

void WriteCalls(int file, const ucontext_t& context) noexcept
{
    WriteLine(file, "\ncalls that the stack shows, innermost first");
    AddAddress(Line(""), CodeAddressOf(context));
    End(file, s_line);
    const MemoryReaderC memory;
    std::array<std::uintptr_t, PIECE_BYTES / sizeof(std::uintptr_t)> words = {};
    std::uintptr_t at = StackAddressOf(context) / sizeof(std::uintptr_t) * sizeof(std::uintptr_t);
    const std::uintptr_t end = at + MAX_STACK_BYTES;
    std::size_t nCalls = 0;
    while (at < end) {
        const std::uintptr_t next = (at / PIECE_BYTES + 1) * PIECE_BYTES; // no piece lies on two pages
        if (!memory.read(at, words.data(), next - at)) return;
        for (std::size_t n = 0; n < (next - at) / sizeof(std::uintptr_t); ++n) {
            if (!IsCode(words[n]) || !StandsBehindCall(memory, words[n])) continue;
            AddAddress(Line(""), words[n]);
            End(file, s_line);
            if (++nCalls == MAX_CALLS) return;
        }
        at = next;
    }
}

void WriteHead(int file, const char* program, const char* signalName, const siginfo_t& info) noexcept
{
    std::array<char, 17> thread = {};
    ::prctl(PR_GET_NAME, thread.data());
    WriteLine(file, "crash report 1");
    End(file, Line("program  ").add(program));
    End(file, Line("process  ").addNumber(static_cast<std::uint64_t>(::getpid())));
    const long id = ::syscall(SYS_gettid);
    End(file, Line("thread   ").addNumber(static_cast<std::uint64_t>(id)).add(' ').add(thread.data()));
    End(file,
        Line("signal   ").addNumber(static_cast<std::uint64_t>(info.si_signo)).add(' ').add(signalName));
    const int code = info.si_code;
    Line("code     ").add(code < 0 ? "-" : "").addNumber(static_cast<std::uint64_t>(code < 0 ? -code : code));
    End(file, s_line);
    if (code <= 0) { // sent, by somebody
        End(file, Line("sender   ").addNumber(static_cast<std::uint64_t>(info.si_pid)));
    } else {
        AddAddress(Line("address  "), reinterpret_cast<std::uintptr_t>(info.si_addr));
        End(file, s_line);
    }
}

} // namespace

void WriteCrashReport(int file, const char* program, const char* signalName, const siginfo_t& info,
                      const void* context) noexcept
{
    const auto& registers = *static_cast<const ucontext_t*>(context);
    WriteHead(file, program, signalName, info);
    WriteLine(file, "\nregisters");
    for (const RegisterT& one : REGISTERS) {
        AddAddress(Line(one.pName).add(' '), RegisterOf(registers, one.index));
        End(file, s_line);
    }
    MapsParserC parser;
    ReadFile("/proc/self/maps", [&parser](const char* bytes, std::size_t count) {
        for (std::size_t n = 0; n < count; ++n)
            parser.take(bytes[n]);
    });
    WriteCalls(file, registers);
    WriteLine(file, "\nmaps");
    ReadFile("/proc/self/maps",
             [file](const char* bytes, std::size_t count) { WriteBytes(file, bytes, count); });
    WriteLine(file, "\nend of report");
}

} // namespace BSS::HAL
