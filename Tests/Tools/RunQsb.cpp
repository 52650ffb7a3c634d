// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Tools/RunQsb.h"

#include "Support/Environment.h"
#include "Support/Files.h"
#include "Support/TemporaryDirectory.h"

#include <boost/filesystem/operations.hpp>
#include <cstdlib>

namespace Support {

QsbRunT RunQsb(const std::vector<std::string>& arguments)
{
    const TemporaryDirectory directory;
    std::string command = ShellQuoted(QSB_COMMAND);
    for (const std::string& argument : arguments) command.append(" ").append(ShellQuoted(argument));
    command.append(" <").append(ShellQuoted(directory.Narrow("in")));
    command.append(" >").append(ShellQuoted(directory.Narrow("out")));
    command.append(" 2>").append(ShellQuoted(directory.Narrow("err")));
    WriteAll(directory.Narrow("in"), "");
    QsbRunT run;
    run.iExitCode = ExitCodeOfSystem(std::system(command.c_str()));
    run.out = ReadAll(directory.Narrow("out"));
    run.err = ReadAll(directory.Narrow("err"));
    return run;
}

std::string RealDataPath(const std::string& name)
{
    const std::string path = GetEnvironment("SCANREADER_DATA").value_or(SCANREADER_DEFAULT_DATA) + "/" + name;
    return boost::filesystem::exists(path) ? path : "";
}

} // namespace Support
