// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. A signal that a fault has raised comes again when the handler returns, to whom it belonged
// before; one that was sent is sent again. All other signals stay blocked meanwhile, so that a fault of the
// report itself ends the process at once.
//
// The thread that installs the handler is given a stack for it, if it has none, so that a stack that is used
// up is reported too; a thread that wants the same gives itself one.
#include "Bss/Bss_Hal/BSS_HAL_CrashDump.h"

#include "Bss/Bss_Hal/BSS_HAL_CrashReport_Posix.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace BSS::HAL {

namespace {

constexpr std::size_t MAX_PATH_BYTES = 4000;
constexpr std::size_t MAX_STAMP_BYTES = 64;
constexpr std::size_t STACK_BYTES = std::size_t{64} << 10;

struct SignalT
{
    int number;
    const char* pName;
};
constexpr std::array SIGNALS = {SignalT{SIGSEGV, "SIGSEGV"}, SignalT{SIGBUS, "SIGBUS"},
                                SignalT{SIGILL, "SIGILL"},   SignalT{SIGFPE, "SIGFPE"},
                                SignalT{SIGABRT, "SIGABRT"}, SignalT{SIGSYS, "SIGSYS"}};

// The handler finds everything here and allocates nothing.
constinit FixedTextT<char, MAX_PATH_BYTES + MAX_STAMP_BYTES> s_path;
constinit FixedTextT<char, 256> s_program;
constinit std::array<struct sigaction, SIGNALS.size()> s_before = {};
constinit std::array<std::atomic<bool>, SIGNALS.size()> s_passedOn = {};
constinit std::atomic<bool> s_bInstalled = false;
constinit std::atomic<bool> s_bBegun = false;
constinit std::atomic<bool> s_bDone = false;

alignas(16) constinit std::array<char, STACK_BYTES> s_stack = {};
constinit long s_stackOwner = 0; // a thread

long ThisThread() noexcept
{
    return ::syscall(SYS_gettid);
}

void WriteDump(const char* signalName, const siginfo_t& info, const void* context) noexcept
{
    std::timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    AddCrashStamp(s_path, now.tv_sec, static_cast<std::uint32_t>(::getpid()));
    s_path.add(CrashDumpSuffix());
    const int file = ::open(s_path.getText(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) return;
    WriteCrashReport(file, s_program.getText(), signalName, info, context);
    ::fsync(file);
    ::close(file);
}

void WaitForDump() noexcept
{
    for (int n = 0; n < 1000 && !s_bDone.load(); ++n) {
        const timespec pause = {0, 10'000'000};
        ::nanosleep(&pause, nullptr);
    }
}

// The handler from before may be one that calls ours: it has had its turn when the signal comes again.
void PassOn(std::size_t which, siginfo_t& info) noexcept
{
    const int number = SIGNALS[which].number;
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    const bool bAgain = s_passedOn[which].exchange(true);
    ::sigaction(number, bAgain ? &byDefault : &s_before[which], nullptr);
    const bool bFault = number == SIGSEGV || number == SIGBUS || number == SIGILL || number == SIGFPE;
    if (bFault && info.si_code > 0) return;
    if (::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), ThisThread(), number, &info) != 0)
        ::syscall(SYS_tgkill, ::getpid(), ThisThread(), number);
}

void OnCrash(int number, siginfo_t* pInfo, void* pContext) noexcept
{
    const int saved = errno;
    const auto* const found = std::find_if(SIGNALS.begin(), SIGNALS.end(),
                                           [number](const SignalT& one) { return one.number == number; });
    if (found == SIGNALS.end()) return;
    // Somebody may still call this handler after it was removed.
    if (s_bInstalled && !s_bBegun.exchange(true)) {
        WriteDump(found->pName, *pInfo, pContext);
        s_bDone = true;
    } else if (s_bInstalled) {
        WaitForDump();
    }
    PassOn(static_cast<std::size_t>(found - SIGNALS.begin()), *pInfo);
    errno = saved;
}

bool IsOurs(const struct sigaction& action) noexcept
{
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == &OnCrash;
}

bool Prepare(const std::string& directory, const std::string& program) noexcept
{
    const bool bSlash = directory.empty() || directory.back() != '/';
    if (directory.size() + program.size() + 1 > MAX_PATH_BYTES || program.size() > 255) return false;
    s_path.clear();
    s_path.add(directory.c_str()).add(bSlash ? "/" : "").add(program.c_str());
    s_program.clear();
    s_program.add(program.c_str());
    return true;
}

void GiveStack() noexcept
{
    stack_t current = {};
    if (s_stackOwner != 0 || ::sigaltstack(nullptr, &current) != 0 || (current.ss_flags & SS_DISABLE) == 0)
        return;
    stack_t stack = {};
    stack.ss_sp = s_stack.data();
    stack.ss_size = s_stack.size();
    if (::sigaltstack(&stack, nullptr) == 0) s_stackOwner = ThisThread();
}

// Another thread's cannot be taken away; it stays that thread's.
void TakeStack() noexcept
{
    stack_t current = {};
    if (s_stackOwner != ThisThread() || ::sigaltstack(nullptr, &current) != 0) return;
    s_stackOwner = 0;
    if (current.ss_sp != s_stack.data()) return;
    stack_t none = {};
    none.ss_flags = SS_DISABLE;
    ::sigaltstack(&none, nullptr);
}

} // namespace

bool InstallCrashDump(const std::wstring& directory, const std::wstring& program)
{
    if (s_bInstalled || !Prepare(NarrowPath(directory), NarrowPath(program))) return false;
    struct sigaction action = {};
    action.sa_sigaction = &OnCrash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ::sigfillset(&action.sa_mask);
    s_bInstalled = true;
    for (std::atomic<bool>& passedOn : s_passedOn)
        passedOn = false;
    for (std::size_t n = 0; n < SIGNALS.size(); ++n)
        ::sigaction(SIGNALS[n].number, nullptr, &s_before[n]); // there before the handler may need it
    for (const SignalT& one : SIGNALS)
        ::sigaction(one.number, &action, nullptr); // of these numbers none is refused
    GiveStack();
    return true;
}

void RemoveCrashDump() noexcept
{
    if (!s_bInstalled) return;
    for (std::size_t n = 0; n < SIGNALS.size(); ++n) {
        struct sigaction current = {};
        ::sigaction(SIGNALS[n].number, nullptr, &current);
        if (IsOurs(current)) ::sigaction(SIGNALS[n].number, &s_before[n], nullptr);
    }
    TakeStack();
    s_bInstalled = false;
}

const wchar_t* CrashDumpSuffix() noexcept
{
    return L".crash.txt";
}

} // namespace BSS::HAL
