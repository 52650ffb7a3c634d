// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The exceptions: their text, their codes, and what a copy carries.
#include "Bss/Bss_Err/BSS_ERR_ErrorBase.h"
#include "Bss/Bss_Err/BSS_ERR_OverflowException.h"
#include "Bss/Bss_Err/BSS_ERR_ResultCode.h"
#include "Bss/Bss_Err/BSS_ERR_SysServiceError.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <typeinfo>

using namespace BSS;
using ERR::ErrorBaseC;

namespace {

static_assert(std::is_nothrow_copy_constructible_v<ErrorBaseC>);
static_assert(std::is_nothrow_copy_assignable_v<ErrorBaseC>);

TEST(ErrorBase, TextNamesTheClassAndTheCodeInSignedDecimal)
{
    const ErrorBaseC error("message", 0x02000009);
    EXPECT_EQ(error.what(), std::string(typeid(ErrorBaseC).name()) + ": rc=33554441");
}

TEST(ErrorBase, CodeAboveTheSignBitIsPrintedNegative)
{
    const ErrorBaseC error("", 0xFFFFFFFE);
    EXPECT_EQ(error.what(), std::string(typeid(ErrorBaseC).name()) + ": rc=-2");
}

TEST(ErrorBase, DerivedClassNamesItself)
{
    const SysServiceErrorC error("", 1);
    const ErrorBaseC& base = error;
    EXPECT_EQ(base.what(), std::string(typeid(SysServiceErrorC).name()) + ": rc=1");
}

TEST(ErrorBase, TextStaysWhenTheCodeIsChangedAfterwards)
{
    ErrorBaseC error("", 0x02000009);
    const std::string before = error.what();
    error.SetResultCode(1);
    EXPECT_EQ(error.what(), before);
    EXPECT_EQ(error.GetResultCode(), 1u);
}

TEST(ErrorBase, TextTakesTheCodeOfTheFirstTimeItIsAskedFor)
{
    ErrorBaseC error("", 0x02000009);
    error.SetResultCode(1);
    EXPECT_EQ(error.what(), std::string(typeid(ErrorBaseC).name()) + ": rc=1");
}

TEST(ErrorBase, MessageIsKeptAndDoesNotEnterTheText)
{
    const ErrorBaseC error("disk on fire", 1);
    EXPECT_STREQ(error.GetMessageText(), "disk on fire");
    EXPECT_EQ(std::string(error.what()).find("fire"), std::string::npos);
    EXPECT_STREQ(ErrorBaseC(nullptr, 1).GetMessageText(), "");
}

TEST(ErrorBase, CopyCarriesMessageCodeAndText)
{
    SysServiceErrorC error("message", 5);
    const std::string text = error.what();
    error.SetResultCode(6);
    const ErrorBaseC copy(error);
    EXPECT_STREQ(copy.GetMessageText(), "message");
    EXPECT_EQ(copy.GetResultCode(), 6u);
    EXPECT_EQ(copy.what(), text);
}

TEST(ErrorBase, AssignmentCarriesMessageCodeAndText)
{
    ErrorBaseC error("message", 5);
    const std::string text = error.what();
    ErrorBaseC other("other", 7);
    other = error;
    EXPECT_STREQ(other.GetMessageText(), "message");
    EXPECT_EQ(other.GetResultCode(), 5u);
    EXPECT_EQ(other.what(), text);
}

TEST(ErrorBase, SelfAssignmentDoesNothing)
{
    ErrorBaseC error("message", 5);
    const ErrorBaseC& same = error;
    error = same;
    EXPECT_STREQ(error.GetMessageText(), "message");
    EXPECT_EQ(error.GetResultCode(), 5u);
}

TEST(SysServiceError, CodeIsTheDefaultOrTheOneGiven)
{
    EXPECT_EQ(SysServiceErrorC("").GetResultCode(), 0x03101004u);
    EXPECT_EQ(SysServiceErrorC("", RC_SERVICE_FAILED).GetResultCode(), 0x03101002u);
}

TEST(OverflowException, IsASystemServiceErrorWithItsOwnCodeAndName)
{
    try {
        throw BIO::OverflowExceptionC("");
    } catch (const SysServiceErrorC& error) {
        EXPECT_EQ(error.what(), std::string(typeid(BIO::OverflowExceptionC).name()) + ": rc=33554441");
    }
}

TEST(ErrorBase, IsCaughtAsTheStandardException)
{
    EXPECT_THROW(throw SysServiceErrorC("", 1), std::exception);
}

TEST(ResultCode, EveryCodeHasItsNumber)
{
    EXPECT_EQ(BSS::RC_OK, 0u);
    EXPECT_EQ(BSS::RC_INVALID_ARGUMENT, 0x02000002u);
    EXPECT_EQ(BSS::RC_OBJECT_MISSING, 0x02000004u);
    EXPECT_EQ(BSS::RC_TIMED_OUT, 0x02000006u);
    EXPECT_EQ(BSS::RC_ENTRY_FOUND, 0x02000008u);
    EXPECT_EQ(BSS::RC_BUFFER_BOUNDS, 0x02000009u);
    EXPECT_EQ(BSS::RC_INVALID_SOCKET, 0x0200000Au);
    EXPECT_EQ(BSS::RC_FAILED, 0x0200001Au);
    EXPECT_EQ(BSS::RC_NOT_FOUND, 0x0200001Bu);
    EXPECT_EQ(BSS::RC_BUFFER_TOO_SMALL, 0x0200001Cu);
    EXPECT_EQ(BSS::RC_CLOSED, 0x0200001Du);
    EXPECT_EQ(BSS::RC_VALUE_REJECTED, 0x0200001Eu);
    EXPECT_EQ(BSS::PANIC_TYPE, 0x01200001u);
    EXPECT_EQ(BSS::RC_WAIT_FAILED, 0x03101001u);
    EXPECT_EQ(BSS::RC_SERVICE_FAILED, 0x03101002u);
    EXPECT_EQ(BSS::RC_SERVICE_UNSPECIFIED, 0x03101004u);
}

} // namespace
