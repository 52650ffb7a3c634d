// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a report about a crash must know of the processor: its registers as a signal handler is given them,
// and how its calls look. For BSS_HAL_CrashReport_Posix.cpp only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ucontext.h>

namespace BSS::HAL {

struct RegisterT
{
    const char* pName;
    int index;
};

#if defined(__x86_64__)
inline constexpr std::array REGISTERS = {
    RegisterT{"rip", REG_RIP}, RegisterT{"rsp", REG_RSP}, RegisterT{"rbp", REG_RBP},
    RegisterT{"rax", REG_RAX}, RegisterT{"rbx", REG_RBX}, RegisterT{"rcx", REG_RCX},
    RegisterT{"rdx", REG_RDX}, RegisterT{"rsi", REG_RSI}, RegisterT{"rdi", REG_RDI},
    RegisterT{"r8", REG_R8},   RegisterT{"r9", REG_R9},   RegisterT{"r10", REG_R10},
    RegisterT{"r11", REG_R11}, RegisterT{"r12", REG_R12}, RegisterT{"r13", REG_R13},
    RegisterT{"r14", REG_R14}, RegisterT{"r15", REG_R15}, RegisterT{"eflags", REG_EFL}};

inline std::uintptr_t RegisterOf(const ucontext_t& context, int index) noexcept
{
    return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[index]);
}
inline std::uintptr_t CodeAddressOf(const ucontext_t& context) noexcept
{
    return RegisterOf(context, REG_RIP);
}
inline std::uintptr_t StackAddressOf(const ucontext_t& context) noexcept
{
    return RegisterOf(context, REG_RSP);
}

// Whether these bytes, the last of which stands before the address, end with a call: e8 and 32 bits, or ff /2
// with its operand.
inline constexpr std::size_t CALL_BYTES = 7;
inline bool EndsWithCall(const unsigned char* bytes) noexcept
{
    if (bytes[CALL_BYTES - 5] == 0xe8) return true;
    constexpr std::array<std::size_t, 5> LENGTHS = {2, 3, 4, 6, 7};
    for (const std::size_t length : LENGTHS) {
        const unsigned char* const call = bytes + CALL_BYTES - length;
        if (call[0] == 0xff && (call[1] & 0x38) == 0x10) return true;
    }
    return false;
}
#elif defined(__aarch64__)
inline constexpr std::array<RegisterT, 31> REGISTERS = {
    {{"x0", 0},   {"x1", 1},   {"x2", 2},   {"x3", 3},   {"x4", 4},   {"x5", 5},   {"x6", 6},   {"x7", 7},
     {"x8", 8},   {"x9", 9},   {"x10", 10}, {"x11", 11}, {"x12", 12}, {"x13", 13}, {"x14", 14}, {"x15", 15},
     {"x16", 16}, {"x17", 17}, {"x18", 18}, {"x19", 19}, {"x20", 20}, {"x21", 21}, {"x22", 22}, {"x23", 23},
     {"x24", 24}, {"x25", 25}, {"x26", 26}, {"x27", 27}, {"x28", 28}, {"x29", 29}, {"x30", 30}}};

inline std::uintptr_t RegisterOf(const ucontext_t& context, int index) noexcept
{
    return context.uc_mcontext.regs[index];
}
inline std::uintptr_t CodeAddressOf(const ucontext_t& context) noexcept
{
    return context.uc_mcontext.pc;
}
inline std::uintptr_t StackAddressOf(const ucontext_t& context) noexcept
{
    return context.uc_mcontext.sp;
}

// bl or blr.
inline constexpr std::size_t CALL_BYTES = 4;
inline bool EndsWithCall(const unsigned char* bytes) noexcept
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return (word & 0xfc000000U) == 0x94000000U || (word & 0xfffffc1fU) == 0xd63f0000U;
}
#else
#error "the registers of this processor are not known here"
#endif

} // namespace BSS::HAL
