// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Where a product keeps things: directories by what they are for, and a search in them. An interface, so that
// code which is given a map can be given another one than the platform's. Paths are wide text, as whoever
// named the directory wrote it.
// Implementations are safe from any thread.
#pragma once

#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"

namespace BSS::OS {

enum class PathKind
{
    Log,           ///< log files
    Configuration, ///< configuration files; need not exist
    Temporary,     ///< files that nobody needs tomorrow
};

class PathMapI
{
public:
    /// The directory. RC_OK; RC_FAILED, and an empty text, when there is none.
    [[nodiscard]] virtual ResultCodeT GetPath(PathKind kind, UTI::StringC& path) = 0;

    /// Names another directory from now on; the empty text gives the choice back to the platform. RC_OK, or
    /// RC_INVALID_ARGUMENT for null.
    [[nodiscard]] virtual ResultCodeT SetPath(PathKind kind, const wchar_t* path) = 0;

    /// Makes the directory if it is missing, readable by the user alone. RC_OK when it is there afterwards,
    /// else RC_FAILED.
    [[nodiscard]] virtual ResultCodeT MakePath(PathKind kind) = 0;

    /// Looks in the directory for an entry of exactly that name, file or directory, without following it
    /// anywhere else: RC_ENTRY_FOUND and its full path; RC_NOT_FOUND when there is none; RC_INVALID_ARGUMENT
    /// for null, the empty text and names with a separator in them or that are "." or ".."; RC_FAILED without
    /// a directory.
    [[nodiscard]] virtual ResultCodeT FindEntry(PathKind kind, const wchar_t* name, UTI::StringC& path) = 0;

    /// A count that changes whenever a directory may have changed. Cheap.
    virtual std::uint32_t Version() const noexcept = 0;
    virtual ~PathMapI();

protected:
    PathMapI() = default;
    PathMapI(const PathMapI&) = default;
    PathMapI& operator=(const PathMapI&) = default;
};

} // namespace BSS::OS
