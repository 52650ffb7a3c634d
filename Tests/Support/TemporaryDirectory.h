// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A directory of one test's own, removed with all it holds when the object goes.
#pragma once

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <string>

namespace Support {

class TemporaryDirectory
{
public:
    TemporaryDirectory()
        : m_path(boost::filesystem::temp_directory_path() /
                 boost::filesystem::unique_path("scanreader-test-%%%%-%%%%-%%%%"))
    {
        boost::filesystem::create_directory(m_path);
    }
    ~TemporaryDirectory()
    {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const boost::filesystem::path& Path() const { return m_path; }
    /// Path of `name`, UTF-8 on Windows, in it.
    std::string Narrow(const std::string& name) const { return BSS::HAL::NarrowPath(Wide(name)); }
    std::wstring Wide(const std::string& name) const
    {
        return BSS::HAL::JoinPath(BSS::HAL::WidePathOf(m_path), BSS::HAL::WidePath(name));
    }

private:
    boost::filesystem::path m_path;
};

} // namespace Support
