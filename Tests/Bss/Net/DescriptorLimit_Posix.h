// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// How many descriptors the process may have.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace NetTests {

/// Whether the process may have so many at once at all.
inline bool MayHaveDescriptors(rlim_t count)
{
    rlimit limit = {};
    return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_max >= count;
}

/// Another limit for the process's descriptors while it lives.
class DescriptorLimitC
{
public:
    explicit DescriptorLimitC(rlim_t limit)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_before), 0);
        rlimit now = m_before;
        now.rlim_cur = limit;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &now), 0) << "this process may not open enough files";
    }
    ~DescriptorLimitC() { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &m_before), 0); }
    DescriptorLimitC(const DescriptorLimitC&) = delete;
    DescriptorLimitC& operator=(const DescriptorLimitC&) = delete;

private:
    rlimit m_before = {};
};

} // namespace NetTests
