// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Reads a scan through the installed library, in C++11, and prints how many points came. Exit code 0 only when that
// is what the file announces and the end was reached without an error.

#include <ScanReader/QsbReader.h>

#include <cstdint>
#include <cstring>
#include <iostream>

static_assert(__cplusplus == 201103L, "the host is compiled as C++11, so that the public header has to be");

int main(int argc, char* argv[])
{
    if (argc != 2) return 2;
    Kry::ScanReader::QsbReader reader;
    if (reader.Open(argv[1]) != 0) {
        std::cerr << reader.RetMsg() << '\n';
        return 1;
    }
    Kry::ScanReader::QsbReadIterator batch(1000);
    std::uint64_t delivered = 0, count = 0;
    while (reader.Read(batch, count) == 0 && count > 0) delivered += count;
    std::cout << delivered << '\n';
    return delivered == reader.GetNumPoints() && std::strcmp(reader.RetMsg(), "End-of-file") == 0 ? 0 : 1;
}
