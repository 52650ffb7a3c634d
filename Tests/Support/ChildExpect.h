// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// What a forked child of a test expects: it ends at once with code 1 where it is wrong, and says where.
#pragma once

#include <cstdio>
#include <cstdlib>

#define CHILD_EXPECT(condition)                                                                              \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                             \
            std::_Exit(1);                                                                                   \
        }                                                                                                    \
    } while (false)
