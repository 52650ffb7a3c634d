// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The linker sends every call of open, fread and so on to the functions named __wrap_... here, and gives the
// original as
// __real_.... Allocations are replaced as the language allows it.
#include "FaultInjection.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <sys/types.h>
#include <utility>

namespace Support {

namespace {

struct State
{
    bool armed = false;
    Call call = Call::Allocation;
    unsigned n = 0;
    unsigned count = 0;
    const std::function<void()>* instead = nullptr;
    std::FILE* failed = nullptr; ///< the stream whose error mark is set
};

State g_state;

/// Counts the call and says whether it is the one to fail.
bool Fails(Call call, int error)
{
    if (!g_state.armed || call != g_state.call || ++g_state.count != g_state.n) return false;
    errno = error;
    if (g_state.instead == nullptr) return true;
    g_state.armed = false;
    (*g_state.instead)();
    g_state.armed = true;
    return false;
}

bool FailsOn(std::FILE* stream, Call call)
{
    if (!Fails(call, EIO)) return false;
    g_state.failed = stream;
    return true;
}

void* Allocate(std::size_t size)
{
    return Fails(Call::Allocation, ENOMEM) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* AllocateAligned(std::size_t size, std::align_val_t alignment)
{
    if (Fails(Call::Allocation, ENOMEM)) return nullptr;
    const auto bytes = static_cast<std::size_t>(alignment);
    return std::aligned_alloc(bytes, (size + bytes - 1) / bytes * bytes); // takes whole multiples only
}

void* OrThrow(void* memory)
{
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

} // namespace

const char* NameOf(Call call)
{
    static const char* const names[] = {"operator new", "open",   "fdopen", "fstat",  "lseek",
                                        "fseeko",       "ftello", "fread",  "fwrite", "fclose"};
    return names[static_cast<int>(call)];
}

Fault::Fault(Call call, unsigned n) : m_n(n)
{
    g_state = {true, call, n, 0, nullptr, nullptr};
}

Fault::Fault(Call call, unsigned n, std::function<void()> instead) : m_n(n), m_instead(std::move(instead))
{
    g_state = {true, call, n, 0, &m_instead, nullptr};
}

Fault::~Fault()
{
    g_state = {};
}

unsigned Fault::Count() const
{
    return g_state.count;
}

bool Fault::Happened() const
{
    return m_n != 0 && g_state.count >= m_n;
}

} // namespace Support

using Support::Call;
using Support::Fails;
using Support::FailsOn;

extern "C" {

int __real_open(const char* path, int flags, ...);
std::FILE* __real_fdopen(int fd, const char* mode);
int __real_fstat(int fd, struct stat* info);
off_t __real_lseek(int fd, off_t offset, int whence);
int __real_fseeko(std::FILE* stream, off_t offset, int whence);
off_t __real_ftello(std::FILE* stream);
std::size_t __real_fread(void* target, std::size_t size, std::size_t count, std::FILE* stream);
std::size_t __real_fwrite(const void* source, std::size_t size, std::size_t count, std::FILE* stream);
int __real_fclose(std::FILE* stream);
int __real_ferror(std::FILE* stream);
void __real_clearerr(std::FILE* stream);

int __wrap_open(const char* path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return Fails(Call::Open, EACCES) ? -1 : __real_open(path, flags, mode);
}

std::FILE* __wrap_fdopen(int fd, const char* mode)
{
    return Fails(Call::Fdopen, ENOMEM) ? nullptr : __real_fdopen(fd, mode);
}

int __wrap_fstat(int fd, struct stat* info)
{
    return Fails(Call::Fstat, EIO) ? -1 : __real_fstat(fd, info);
}

off_t __wrap_lseek(int fd, off_t offset, int whence)
{
    return Fails(Call::Lseek, EIO) ? -1 : __real_lseek(fd, offset, whence);
}

int __wrap_fseeko(std::FILE* stream, off_t offset, int whence)
{
    return Fails(Call::Fseeko, EIO) ? -1 : __real_fseeko(stream, offset, whence);
}

off_t __wrap_ftello(std::FILE* stream)
{
    return Fails(Call::Ftello, EIO) ? -1 : __real_ftello(stream);
}

std::size_t __wrap_fread(void* target, std::size_t size, std::size_t count, std::FILE* stream)
{
    return FailsOn(stream, Call::Fread) ? 0 : __real_fread(target, size, count, stream);
}

std::size_t __wrap_fwrite(const void* source, std::size_t size, std::size_t count, std::FILE* stream)
{
    return FailsOn(stream, Call::Fwrite) ? 0 : __real_fwrite(source, size, count, stream);
}

int __wrap_fclose(std::FILE* stream)
{
    if (stream == Support::g_state.failed) Support::g_state.failed = nullptr;
    const bool fails = Fails(Call::Fclose, EIO);
    const int result = __real_fclose(stream);
    return fails ? EOF : result;
}

int __wrap_ferror(std::FILE* stream)
{
    return stream == Support::g_state.failed ? 1 : __real_ferror(stream);
}

void __wrap_clearerr(std::FILE* stream)
{
    if (stream == Support::g_state.failed) Support::g_state.failed = nullptr;
    __real_clearerr(stream);
}

} // extern "C"

void* operator new(std::size_t size)
{
    return Support::OrThrow(Support::Allocate(size));
}

void* operator new[](std::size_t size)
{
    return Support::OrThrow(Support::Allocate(size));
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Support::Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return Support::Allocate(size);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return Support::OrThrow(Support::AllocateAligned(size, alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return Support::OrThrow(Support::AllocateAligned(size, alignment));
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}
