// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Tools/RunQsb.h"

#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <boost/filesystem/operations.hpp>

namespace Support {

QsbRunT RunQsb(const std::vector<std::string>& arguments)
{
    const TemporaryDirectory directory;
    std::vector<std::string> command = arguments;
    command.insert(command.begin(), QSB_COMMAND);
    WriteAll(directory.Narrow("in"), "");
    QsbRunT run;
    run.iExitCode = RunProgram(command, {directory.Narrow("in"), directory.Narrow("out"), directory.Narrow("err")});
    run.out = LinesOf(ReadAll(directory.Narrow("out")));
    run.err = LinesOf(ReadAll(directory.Narrow("err")));
    return run;
}

std::string RealDataPath(const std::string& name)
{
    const std::string path = GetEnvironment("SCANREADER_DATA").value_or(SCANREADER_DEFAULT_DATA) + "/" + name;
    return boost::filesystem::exists(path) ? path : "";
}

} // namespace Support
