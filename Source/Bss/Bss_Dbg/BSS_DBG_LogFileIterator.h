// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Points to one of the log manager's log files, or to none. Keeps no file alive. Belongs to one thread at a
// time.
#pragma once

#include <memory>
#include <string>
#include <utility>

namespace BSS::DBG {

class DbgLogConsumerC;
class DbgLogMgrC;

class DbgLogFileIteratorC
{
public:
    /// Points to none.
    DbgLogFileIteratorC() = default;

    /// Whether it points to a log file.
    explicit operator bool() const noexcept { return !m_file.expired(); }

    /// The name of the consumer that writes the file.
    const std::string& getConsumerName() const noexcept { return m_name; }

private:
    friend class DbgLogMgrC;

    DbgLogFileIteratorC(std::string name, std::weak_ptr<DbgLogConsumerC> file)
        : m_name(std::move(name)), m_file(std::move(file))
    {}

    std::string m_name;
    std::weak_ptr<DbgLogConsumerC> m_file;
};

} // namespace BSS::DBG
