// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What the TCP/IP client's losses cost in memory, as the heap counts it. A sanitizer's heap is another one,
// which looks for leaks itself.
#include "LosingClient.h"
#include "Support/LogCapture.h"

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <string>

using namespace NetTests;

namespace {

std::size_t SizeBehind(const std::string& text, const std::string& words)
{
    const std::size_t place = text.rfind(words); // of the whole, behind the parts
    const std::size_t size = text.find("size=\"", place);
    return place == std::string::npos ? 0 : std::strtoull(text.c_str() + size + 6, nullptr, 10);
}

/// Bytes of all threads that are in use.
std::size_t HeapInUse()
{
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const file = ::open_memstream(&text, &size);
    EXPECT_EQ(::malloc_info(0, file), 0);
    std::fclose(file);
    const std::string all(text, size);
    std::free(text);
    return SizeBehind(all, "<system type=\"current\"") - SizeBehind(all, "<total type=\"fast\"") -
           SizeBehind(all, "<total type=\"rest\"");
}

TEST(TcpIpClientMemoryPosixTest, ThousandLossesKeepNoMemory)
{
    const Support::LogCapture systemLog;
    ListenerC listener;
    LosingClientC client(listener, 0);
    client.Lose(200); // what is kept for later by the system and by threads
    const std::size_t before = HeapInUse();
    client.Lose(3000);
    // The smallest block that there is, for every loss, would be 96000 bytes; so much is other threads' at
    // one moment and not at the other.
    constexpr std::size_t NOISE_BYTES = 50000;
    EXPECT_LT(HeapInUse(), before + NOISE_BYTES);
    client.Stop();
}

} // namespace
