// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The raw form is told by its name, PLY by its first bytes.
#include "Tools/Qsb/Tool_OpenSource.h"

#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_FileKind.h"
#include "Tools/Qsb/Tool_RawHeader.h"
#include "Tools/Qsb/Tool_ScanInput.h"

#include <fmt/format.h>

namespace Tool {

namespace {

bool BeginsLikePly(ScanInputI& input)
{
    char acStart[4] = {};
    const std::size_t nRead = input.ReadAt(0, acStart, sizeof(acStart));
    const std::string_view start(acStart, nRead);
    return start == "ply\n" || start == "ply\r";
}

} // namespace

std::vector<std::string> SourceFiles(const std::string& path)
{
    if (FileKindOf(path) != FileKindT::Raw) return {path};
    const auto [header, data] = RawPaths(path);
    return {header, data};
}

std::unique_ptr<PointSourceI> OpenSource(const std::string& path)
{
    const std::vector<std::string> files = SourceFiles(path);
    NamedInputC first{files[0], std::make_unique<FileInputC>(files[0])};
    if (files.size() == 2) return ReadRaw(first, {files[1], std::make_unique<FileInputC>(files[1])});
    if (FileKindOf(path) == FileKindT::Ply || BeginsLikePly(*first.poInput)) return ReadPly(std::move(first));
    throw ToolErrorC(
        s_iUsage,
        fmt::format("{}: neither a PLY file nor one of the raw form, whose names end in .json and .bin",
                    path));
}

} // namespace Tool
