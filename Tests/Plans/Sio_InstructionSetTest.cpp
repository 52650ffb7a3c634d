// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Choosing the instruction set. The environment is asked once in a process, so it stands in the test's own,
// as the build description sets it.
#include "Sio/Sio_InstructionSet.h"
#include "Support/Environment.h"

#include <gtest/gtest.h>

namespace {

using SIO::QsbInstructionSetT;

/// Taken before any test chooses.
const QsbInstructionSetT s_eFirst = SIO::GetInstructionSet();

QsbInstructionSetT Best()
{
    SIO::SetInstructionSet(QsbInstructionSetT::eAvx2);
    const QsbInstructionSetT eBest = SIO::GetInstructionSet();
    SIO::SetInstructionSet(s_eFirst);
    return eBest;
}

TEST(InstructionSet, TheEnvironmentChoosesWhatIsUsedFirst)
{
    const std::string strAsked = Support::GetEnvironment("SCANREADER_SIMD").value_or("");
    if (strAsked == "virtual") {
        EXPECT_EQ(s_eFirst, QsbInstructionSetT::eVirtual);
    } else if (strAsked == "baseline") {
        EXPECT_EQ(s_eFirst, QsbInstructionSetT::eBaseline);
    } else {
        EXPECT_EQ(s_eFirst, Best());
    }
}

TEST(InstructionSet, ChangesAndComesBack)
{
    for (const QsbInstructionSetT eSet : {QsbInstructionSetT::eVirtual, QsbInstructionSetT::eBaseline}) {
        SIO::SetInstructionSet(eSet);
        EXPECT_EQ(SIO::GetInstructionSet(), eSet);
    }
    SIO::SetInstructionSet(s_eFirst);
    EXPECT_EQ(SIO::GetInstructionSet(), s_eFirst);
}

TEST(InstructionSet, TheBestIsNeverLessThanTheBaseline)
{
    EXPECT_GE(Best(), QsbInstructionSetT::eBaseline);
}

} // namespace
