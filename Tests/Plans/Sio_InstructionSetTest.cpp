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
    EXPECT_EQ(s_eFirst, SIO::InstructionSetNamed(strAsked).value_or(Best()));
}

TEST(InstructionSet, EachHasAName)
{
    EXPECT_EQ(SIO::InstructionSetNamed("virtual"), QsbInstructionSetT::eVirtual);
    EXPECT_EQ(SIO::InstructionSetNamed("plain"), QsbInstructionSetT::ePlain);
    EXPECT_EQ(SIO::InstructionSetNamed("baseline"), QsbInstructionSetT::eBaseline);
    EXPECT_EQ(SIO::InstructionSetNamed("avx2"), QsbInstructionSetT::eAvx2);
    EXPECT_EQ(SIO::InstructionSetNamed("AVX2"), std::nullopt);
    EXPECT_EQ(SIO::InstructionSetNamed(""), std::nullopt);
}

TEST(InstructionSet, ChangesAndComesBack)
{
    for (const QsbInstructionSetT eSet :
         {QsbInstructionSetT::eVirtual, QsbInstructionSetT::ePlain, QsbInstructionSetT::eBaseline}) {
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
