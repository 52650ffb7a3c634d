// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The qsb command: reads the command line, runs the chosen verb and turns its end into an exit code. stdout
// carries a verb's result alone; messages go to stderr.
#include "Bss/Bss_Hal/BSS_HAL_Console.h"
#include "Tools/Qsb/Cmd_Check.h"
#include "Tools/Qsb/Cmd_Export.h"
#include "Tools/Qsb/Cmd_Import.h"
#include "Tools/Qsb/Cmd_Info.h"
#include "Tools/Qsb/Cmd_Render.h"
#include "Tools/Qsb/Cmd_Synth.h"
#include "Tools/Qsb/Tool_Error.h"
#include "Tools/Qsb/Tool_Interrupt.h"
#include "Tools/Qsb/Tool_Verb.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

int Run(const Tool::VerbActionT& action)
{
    try {
        return action();
    } catch (const Tool::ToolErrorC& error) {
        fmt::print(stderr, "qsb: {}\n", error.what());
        return error.GetExitCode();
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "qsb: out of memory\n");
    } catch (const std::exception& error) {
        fmt::print(stderr, "qsb: {}\n", error.what());
    }
    return Tool::s_iFailed;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"Looks at, checks, makes and converts QSB scan files.", "qsb"};
    app.allow_windows_style_options(false); // "/scans/a.qsb" is a file there too
    app.require_subcommand(1);
    Tool::VerbActionT action;
    Tool::AddInfo(app, action);
    Tool::AddCheck(app, action);
    Tool::AddImport(app, action);
    Tool::AddExport(app, action);
    Tool::AddRender(app, action);
    Tool::AddSynth(app, action);

    try {
        std::vector<std::string> arguments = BSS::HAL::ProgramArguments(argc, argv);
        // The name is known, and the parser takes the others from behind.
        if (!arguments.empty()) arguments.erase(arguments.begin());
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? Tool::s_iDone : Tool::s_iUsage;
    }
    Tool::CatchInterrupts();
    return Run(action);
}
