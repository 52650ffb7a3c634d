// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// There is no debugger output here; a person who wants to see it asks for it by an environment variable.
#include "Bss/Bss_Hal/BSS_HAL_DebugOutput.h"

#include "Bss/Bss_Hal/BSS_HAL_Undisturbed.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"
#include "Bss/Bss_Hal/BSS_HAL_WriteSignals.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <unistd.h>

namespace BSS::HAL {

namespace {

void WriteAll(int fd, const char* data, std::size_t size) noexcept
{
    const NoCancellation undisturbed;
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

} // namespace

void SystemDebugOutput(const wchar_t* text) noexcept
try {
    const char* const wanted = std::getenv("SCANREADER_DEBUG_OUTPUT");
    if (wanted == nullptr || std::strcmp(wanted, "stderr") != 0) return;
    const std::string narrow = Utf8FromWide(text);
    WithoutWriteSignals([&] { WriteAll(STDERR_FILENO, narrow.data(), narrow.size()); });
} catch (const std::bad_alloc&) {
    // Nobody is left to tell.
}

} // namespace BSS::HAL
