// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// A file that a verb makes. It is written under a temporary name beside the target, flushed to disk and
// renamed at the end, so the target is at every moment either what it was or the whole new file; when the
// object goes without Commit, by an error or an interrupt, the temporary file goes with it. Knows nothing of
// contents. One thread at a time.
#pragma once

#include <string>
#include <vector>

namespace Tool {

class OutputFileC
{
public:
    /// Checks the target and chooses the temporary name; makes no file yet. ToolErrorC with s_iFailed when
    /// the target exists and `bOverwrite` is false, is something else than a regular file, is one of `inputs`
    /// (by whatever name or link), or when its folder does not exist. A symbolic link is followed, so that
    /// the link stays.
    OutputFileC(const std::string& target, bool bOverwrite, const std::vector<std::string>& inputs = {});

    OutputFileC(const OutputFileC&) = delete;
    OutputFileC& operator=(const OutputFileC&) = delete;

    /// Removes the temporary file unless it was committed.
    ~OutputFileC();

    /// Where to write until Commit.
    const std::string& GetTemporaryPath() const noexcept { return m_strTemporary; }

    /// The target as it was given, for messages.
    const std::string& GetTarget() const noexcept { return m_strTarget; }

    /// Flushes the temporary file, which must be closed, to disk and gives it the target's name; an existing
    /// target's permissions are kept. ToolErrorC with s_iFailed when that fails, or when a target has come
    /// into being meanwhile that is not to be overwritten: it stays as it is.
    void Commit();

private:
    std::string m_strTarget;
    bool m_bOverwrite;
    bool m_bCommitted = false;
    std::wstring m_strResolved; ///< the target without symbolic links
    std::string m_strTemporary;
};

} // namespace Tool
