// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A library that exports what a library should not: type information.

struct Leaky
{
    virtual ~Leaky();
};

Leaky::~Leaky() = default;

void expected()
{
}
