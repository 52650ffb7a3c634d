// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The framework's string: its block, its positions, and what it can do.
#include "Bss/Bss_Uti/BSS_UTI_CaseMap.h"
#include "Bss/Bss_Uti/BSS_UTI_String.h"
#include "Support/AllocationCount.h"
#include "Support/ReportCapture.h"

#include <boost/numeric/conversion/cast.hpp>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using BSS::UTI::StringC;
using BSS::UTI::TextBlockC;
using Support::ReportCapture;
using Support::ReportT;

namespace {

constexpr char INSIDE_OR_END[] = "nIndex <= GetLength() && nIndex >= 0:%lx, %lx";
constexpr char INSIDE[] = "nIndex < GetLength() && nIndex >= 0:%lx, %lx";
constexpr char NULL_TEXT[] = "0 != lpsz";

const wchar_t* const NOTHING = nullptr;

bool OnlyPanicIs(const ReportCapture& reports, const char* format, std::int32_t first, std::int32_t second)
{
    const std::vector<ReportT> all = reports.Reports();
    return all.size() == 1 && all[0].kind == ReportT::Kind::Panic && all[0].text == format &&
           all[0].first == static_cast<std::uint32_t>(first) &&
           all[0].second == static_cast<std::uint32_t>(second);
}

TEST(StringBlock, HasItsFieldsInOrder)
{
    // Buffer, pointer, capacity, marker, count, and nothing else.
    EXPECT_EQ(sizeof(TextBlockC), 16 * sizeof(wchar_t) + sizeof(void*) + 3 * sizeof(std::uint32_t) + 4);
    EXPECT_EQ(sizeof(StringC), sizeof(void*));
    const StringC text(L"abc");
    const auto* const block = reinterpret_cast<const unsigned char*>(&text.Block());
    EXPECT_EQ(*reinterpret_cast<const wchar_t*>(block), L'a');
    EXPECT_EQ(*reinterpret_cast<const std::int32_t*>(block + 16 * sizeof(wchar_t) + sizeof(void*) + 4), -1);
    EXPECT_EQ(*reinterpret_cast<const std::uint32_t*>(block + 16 * sizeof(wchar_t) + sizeof(void*) + 8), 1u);
}

TEST(StringBlock, FifteenCharactersAreInlineAndTakeOneAllocation)
{
    const Support::AllocationCount count;
    const StringC text(L"123456789012345");
    EXPECT_EQ(count.Count(), 1u);
    EXPECT_EQ(text.Block().Heap(), nullptr);
    EXPECT_EQ(text, L"123456789012345");
}

TEST(StringBlock, SixteenCharactersAreOnTheHeapAndTakeTwo)
{
    const Support::AllocationCount count;
    const StringC text(L"1234567890123456");
    EXPECT_EQ(count.Count(), 2u);
    EXPECT_NE(text.Block().Heap(), nullptr);
    EXPECT_EQ(text.Block().Capacity(), 17u);
    EXPECT_EQ(text.GetLength(), 16);
}

TEST(StringBlock, NullTextMakesAnEmptyInlineBlock)
{
    TextBlockC* const block = TextBlockC::Make(nullptr);
    EXPECT_EQ(block->Heap(), nullptr);
    EXPECT_EQ(*block->Text(), L'\0');
    block->Release();
}

TEST(StringBlock, EmptyStringsShareOneBlockThatHoldsAReferenceOfItsOwn)
{
    const StringC one;
    const std::uint32_t before = one.Block().References();
    EXPECT_GE(before, 2u);
    const StringC two(L"");
    const StringC three(NOTHING);
    EXPECT_TRUE(one.SharesBlockWith(two));
    EXPECT_TRUE(one.SharesBlockWith(three));
    EXPECT_EQ(one.Block().References(), before + 2);
}

TEST(StringBlock, EmptyBlockIsNeverChanged)
{
    StringC one;
    one += L"text";
    one.Insert(0, L"more");
    StringC two;
    two.Append(L'x');
    EXPECT_TRUE(StringC().IsEmpty());
    EXPECT_EQ(one, L"moretext");
    EXPECT_EQ(two, L"x");
}

TEST(StringBlock, CopyRaisesTheCountAndTheEndLowersIt)
{
    const StringC text(L"abc");
    {
        const StringC copy(text);
        EXPECT_TRUE(copy.SharesBlockWith(text));
        EXPECT_EQ(text.Block().References(), 2u);
    }
    EXPECT_EQ(text.Block().References(), 1u);
}

TEST(StringBlock, CopyAllocatesNothing)
{
    const StringC text(L"a text of more than fifteen characters");
    const Support::AllocationCount count;
    const StringC copy(text);
    StringC assigned;
    assigned = copy;
    EXPECT_EQ(count.Count(), 0u);
}

TEST(StringBlock, ChangeOfACopyLeavesTheOriginal)
{
    const StringC text(L"a text of more than fifteen characters");
    StringC copy(text);
    copy.SetAt(0, L'A');
    EXPECT_FALSE(copy.SharesBlockWith(text));
    EXPECT_EQ(text, L"a text of more than fifteen characters");
    EXPECT_EQ(copy, L"A text of more than fifteen characters");
}

TEST(StringBlock, CountIsSafeWhenThreadsCopyAndDropOneString)
{
    const StringC text(L"a text of more than fifteen characters");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([mine = text] {
            for (int k = 0; k < 5000; ++k) {
                StringC copy(mine);
                const StringC empty;
                if (k % 100 == 0) copy.SetAt(0, L'x');
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    threads.clear();
    EXPECT_EQ(text.Block().References(), 1u);
}

TEST(String, MovedFromStringIsEmpty)
{
    StringC text(L"abc");
    const StringC moved(std::move(text));
    EXPECT_TRUE(text.IsEmpty()); // NOLINT(bugprone-use-after-move): what this is about
    EXPECT_EQ(moved, L"abc");
}

TEST(String, LengthIsCountedToTheTerminator)
{
    EXPECT_EQ(StringC().GetLength(), 0);
    EXPECT_EQ(StringC(L"abc").GetLength(), 3);
    EXPECT_EQ(StringC(std::wstring_view(L"ab\0cd", 5)).GetLength(), 2);
    StringC text(L"abcdef");
    text.SetAt(2, L'\0');
    EXPECT_EQ(text.GetLength(), 2);
}

TEST(String, LengthThatDoesNotFitIsAConversionOverflow)
{
    EXPECT_EQ(BSS::UTI::CheckedLength(0x7FFFFFFF), 0x7FFFFFFF);
    try {
        BSS::UTI::CheckedLength(0x80000000u);
        ADD_FAILURE() << "not refused";
    } catch (const boost::numeric::positive_overflow& overflow) {
        EXPECT_STREQ(overflow.what(), "bad numeric conversion: positive overflow");
    }
}

TEST(String, AssignmentOfItselfAndOfItsOwnText)
{
    StringC text(L"a text of more than fifteen characters");
    const StringC& same = text;
    text = same;
    text = text.Text() + 2;
    EXPECT_EQ(text, L"text of more than fifteen characters");
}

TEST(String, AssignmentOfNullIsReportedAndChangesNothing)
{
    StringC text(L"abc");
    const ReportCapture reports;
    text = NOTHING;
    EXPECT_EQ(reports.Count(NULL_TEXT), 1u);
    EXPECT_EQ(text, L"abc");
}

TEST(String, ExistingCharactersAreAtZeroToLengthMinusOne)
{
    StringC text(L"abc");
    const ReportCapture reports;
    EXPECT_EQ(text.GetAt(0), L'a');
    EXPECT_EQ(text[2], L'c');
    text.SetAt(2, L'C');
    EXPECT_EQ(text, L"abC");
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(String, CharacterAtTheLengthOrBeforeZeroRaisesThePanic)
{
    StringC text(L"abc");
    ReportCapture reports;
    EXPECT_EQ(text.GetAt(3), L'\0');
    EXPECT_TRUE(OnlyPanicIs(reports, INSIDE, 3, 3));
    reports.Clear();
    EXPECT_EQ(text[-1], L'\0');
    EXPECT_TRUE(OnlyPanicIs(reports, INSIDE, -1, 3));
    reports.Clear();
    text.SetAt(3, L'x');
    EXPECT_TRUE(OnlyPanicIs(reports, INSIDE, 3, 3));
    EXPECT_EQ(text, L"abc");
}

TEST(String, InsertionIsAcceptedFromZeroToTheLength)
{
    StringC text(L"bd");
    const ReportCapture reports;
    EXPECT_EQ(text.Insert(0, L"a"), 3);
    EXPECT_EQ(text.Insert(2, L'c'), 4);
    EXPECT_EQ(text.Insert(text.GetLength(), L"e"), 5);
    EXPECT_EQ(text, L"abcde");
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(String, InsertionBeyondTheLengthRaisesThePanicAndChangesNothing)
{
    StringC text(L"abc");
    ReportCapture reports;
    EXPECT_EQ(text.Insert(4, L"x"), 3);
    EXPECT_TRUE(OnlyPanicIs(reports, INSIDE_OR_END, 4, 3));
    reports.Clear();
    text.Insert(-1, L'x');
    EXPECT_TRUE(OnlyPanicIs(reports, INSIDE_OR_END, -1, 3));
    EXPECT_EQ(text, L"abc");
}

TEST(String, EveryOperationWithAPositionChecksIt)
{
    StringC text(L"abc");
    ReportCapture reports;
    const auto raised = [&reports](const auto& operation) {
        reports.Clear();
        operation();
        return OnlyPanicIs(reports, INSIDE_OR_END, 4, 3);
    };
    EXPECT_TRUE(raised([&] { EXPECT_TRUE(text.Mid(4).IsEmpty()); }));
    EXPECT_TRUE(raised([&] { EXPECT_TRUE(text.Mid(4, 1).IsEmpty()); }));
    EXPECT_TRUE(raised([&] { EXPECT_EQ(text.Delete(4), 3); }));
    EXPECT_TRUE(raised([&] { EXPECT_EQ(text.Find(L"a", 4), -1); }));
    EXPECT_TRUE(raised([&] { EXPECT_EQ(text.Find(L'a', 4), -1); }));
    EXPECT_TRUE(raised([&] { EXPECT_EQ(text.FindOneOf(L"a", 4), -1); }));
    std::int32_t at = 4;
    EXPECT_TRUE(raised([&] { EXPECT_TRUE(text.Tokenize(L" ", at).IsEmpty()); }));
    EXPECT_EQ(at, -1);
    EXPECT_EQ(text, L"abc");
}

TEST(String, EveryOperationWithASourceTextReportsNull)
{
    StringC text(L"abc");
    ReportCapture reports;
    std::int32_t at = 0;
    std::size_t expected = 0;
    const auto reported = [&](const auto& operation) {
        operation();
        return reports.Count(NULL_TEXT) == ++expected;
    };
    EXPECT_TRUE(reported([&] { EXPECT_GT(text.Compare(NOTHING), 0); }));
    EXPECT_TRUE(reported([&] { EXPECT_GT(text.CompareNoCase(NOTHING), 0); }));
    EXPECT_TRUE(reported([&] { EXPECT_EQ(text.Find(NOTHING), -1); }));
    EXPECT_TRUE(reported([&] { EXPECT_EQ(text.FindOneOf(NOTHING), -1); }));
    EXPECT_TRUE(reported([&] { EXPECT_EQ(text.ReverseFind(NOTHING), -1); }));
    EXPECT_TRUE(reported([&] { text.Tokenize(NOTHING, at); }));
    EXPECT_TRUE(reported([&] { text.Append(NOTHING); }));
    EXPECT_TRUE(reported([&] { text += NOTHING; }));
    EXPECT_TRUE(reported([&] { text.Insert(0, NOTHING); }));
    EXPECT_TRUE(reported([&] { text.Replace(NOTHING, L"x"); }));
    EXPECT_TRUE(reported([&] { text.Replace(L"a", NOTHING); }));
    EXPECT_TRUE(reported([&] { text.Trim(NOTHING); }));
    EXPECT_TRUE(reported([&] { text.TrimLeft(NOTHING); }));
    EXPECT_TRUE(reported([&] { text.TrimRight(NOTHING); }));
    EXPECT_TRUE(reported([&] { text.Format(NOTHING); }));
    EXPECT_TRUE(reported([&] { EXPECT_EQ(text + NOTHING, L"abc"); }));
    EXPECT_TRUE(reported([&] { EXPECT_EQ(NOTHING + text, L"abc"); }));
    EXPECT_EQ(text, L"abc");
}

TEST(String, ConstructionFromNullIsNotReported)
{
    const ReportCapture reports;
    EXPECT_TRUE(StringC(NOTHING).IsEmpty());
    EXPECT_TRUE(reports.Reports().empty());
}

TEST(String, Comparing)
{
    EXPECT_EQ(StringC(L"abc").Compare(L"abc"), 0);
    EXPECT_LT(StringC(L"abc").Compare(L"abd"), 0);
    EXPECT_GT(StringC(L"abc").Compare(L"ab"), 0);
    EXPECT_TRUE(StringC(L"a") < StringC(L"b"));
    EXPECT_TRUE(StringC(L"abc") == StringC(L"abc"));
    EXPECT_FALSE(StringC(L"abc") == L"ABC");
}

TEST(String, ComparingWithoutCase)
{
    EXPECT_EQ(StringC(L"ABC \u00C4\u0416\u03A9").CompareNoCase(L"abc \u00E4\u0436\u03C9"), 0);
    EXPECT_LT(StringC(L"abc").CompareNoCase(L"ABD"), 0);
    EXPECT_GT(StringC(L"abcd").CompareNoCase(L"ABC"), 0);
    EXPECT_LT(StringC(L"").CompareNoCase(L"a"), 0);
}

TEST(String, CaseFollowsNoLocale)
{
    StringC text(L"Stra\u00DFe \u00E9\u0151 \u0131\u0130 123");
    EXPECT_EQ(text.MakeUpper(), L"STRA\u00DFE \u00C9\u0150 \u0131\u0130 123");
    EXPECT_EQ(text.MakeLower(), L"stra\u00DFe \u00E9\u0151 \u0131\u0130 123");
}

TEST(String, EveryLetterComesBackFromItsOtherCase)
{
    int letters = 0;
    for (wchar_t character = 0; character < 0x2000; ++character) {
        const wchar_t lower = BSS::UTI::ToLowerCase(character);
        if (lower == character) continue;
        EXPECT_EQ(BSS::UTI::ToUpperCase(lower), character);
        EXPECT_EQ(BSS::UTI::ToLowerCase(lower), lower);
        ++letters;
    }
    EXPECT_GT(letters, 700);
}

TEST(String, Finding)
{
    const StringC text(L"abcabc");
    EXPECT_EQ(text.Find(L"bc"), 1);
    EXPECT_EQ(text.Find(L"bc", 2), 4);
    EXPECT_EQ(text.Find(L'c', 3), 5);
    EXPECT_EQ(text.Find(L"x"), -1);
    EXPECT_EQ(text.Find(L"", 6), 6);
    EXPECT_EQ(text.Find(L"c", 6), -1);
    EXPECT_EQ(text.FindOneOf(L"xcb"), 1);
    EXPECT_EQ(text.ReverseFind(L'b'), 4);
    EXPECT_EQ(text.ReverseFind(L"ab"), 3);
    EXPECT_EQ(text.ReverseFind(L"abd"), -1);
}

TEST(String, Parts)
{
    const StringC text(L"abcdef");
    EXPECT_EQ(text.Left(2), L"ab");
    EXPECT_EQ(text.Left(-1), L"");
    EXPECT_TRUE(text.Left(100).SharesBlockWith(text));
    EXPECT_EQ(text.Right(2), L"ef");
    EXPECT_EQ(text.Right(0), L"");
    EXPECT_TRUE(text.Right(6).SharesBlockWith(text));
    EXPECT_EQ(text.Mid(2), L"cdef");
    EXPECT_EQ(text.Mid(2, 3), L"cde");
    EXPECT_EQ(text.Mid(2, 100), L"cdef");
    EXPECT_EQ(text.Mid(6), L"");
    EXPECT_EQ(text.Mid(2, std::numeric_limits<std::int32_t>::min()), L"");
}

TEST(String, AppendingWithinAndBeyondTheBlock)
{
    StringC text(L"0");
    std::wstring expected = L"0";
    for (int i = 0; i < 100; ++i) {
        text += L"ab";
        text += L'c';
        expected += L"abc";
    }
    EXPECT_EQ(text, expected.c_str());
    EXPECT_EQ(StringC(L"a") + L"b" + StringC(L"c"), L"abc");
    EXPECT_EQ(L"x" + StringC(L"y"), L"xy");
}

TEST(String, AppendingItself)
{
    StringC text(L"ab");
    text += text;
    EXPECT_EQ(text, L"abab");
    text.Append(text.Text() + 1);
    EXPECT_EQ(text, L"ababbab");
    text += text;
    text += text;
    EXPECT_EQ(text, L"ababbabababbabababbabababbab");
    text.Insert(1, text.Text());
    EXPECT_EQ(text.GetLength(), 56);
}

TEST(String, AppendingToAnEmptyStringSharesTheOther)
{
    const StringC other(L"abc");
    StringC text;
    text += other;
    EXPECT_TRUE(text.SharesBlockWith(other));
}

TEST(String, Deleting)
{
    StringC text(L"abcdef");
    EXPECT_EQ(text.Delete(1, 2), 4);
    EXPECT_EQ(text, L"adef");
    EXPECT_EQ(text.Delete(3, 100), 3);
    EXPECT_EQ(text.Delete(3), 3);
    EXPECT_EQ(text.Delete(0, -5), 3);
    EXPECT_EQ(text, L"ade");
    EXPECT_EQ(text.Remove(L'd'), 1);
    EXPECT_EQ(text.Remove(L'x'), 0);
    EXPECT_EQ(text, L"ae");
}

TEST(String, Replacing)
{
    StringC text(L"aXbXXc");
    EXPECT_EQ(text.Replace(L"X", L"XY"), 3);
    EXPECT_EQ(text, L"aXYbXYXYc");
    EXPECT_EQ(text.Replace(L"XY", L""), 3);
    EXPECT_EQ(text, L"abc");
    EXPECT_EQ(text.Replace(L"", L"x"), 0);
    EXPECT_EQ(text.Replace(L'b', L'B'), 1);
    EXPECT_EQ(text.Replace(text.Text(), text.Text()), 1);
    EXPECT_EQ(text, L"aBc");
}

TEST(String, Trimming)
{
    StringC text(L" \t\r\n abc \n");
    EXPECT_EQ(StringC(text).TrimLeft(), L"abc \n");
    EXPECT_EQ(StringC(text).TrimRight(), L" \t\r\n abc");
    EXPECT_EQ(text.Trim(), L"abc");
    EXPECT_EQ(text.Trim(L"ac"), L"b");
    EXPECT_EQ(text.Trim(L"b"), L"");
    EXPECT_EQ(text.Trim(), L"");
}

TEST(String, Tokens)
{
    const StringC text(L",a;bc,,d,");
    std::int32_t at = 0;
    std::vector<std::wstring> tokens;
    for (StringC token = text.Tokenize(L",;", at); at >= 0; token = text.Tokenize(L",;", at))
        tokens.emplace_back(token.Text());
    EXPECT_EQ(tokens, (std::vector<std::wstring>{L"a", L"bc", L"d"}));
}

TEST(String, NumbersAreReadWholeOrNotAtAll)
{
    std::int32_t number = 77;
    EXPECT_TRUE(StringC(L" -2147483648\n").ToNumber(number));
    EXPECT_EQ(number, std::numeric_limits<std::int32_t>::min());
    EXPECT_TRUE(StringC(L"+5").ToNumber(number));
    for (const wchar_t* text :
         {L"", L" ", L"x", L"5x", L"5 5", L"2147483648", L"1.5", L"+-5", L"\u0665", L"0x10"})
        EXPECT_FALSE(StringC(text).ToNumber(number)) << text;
    EXPECT_EQ(number, 5);
    std::uint64_t large = 0;
    EXPECT_TRUE(StringC(L"18446744073709551615").ToNumber(large));
    EXPECT_EQ(large, std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(StringC(L"0xFf").ToNumber(large, 16));
    EXPECT_EQ(large, 255u);
    EXPECT_FALSE(StringC(L"-1").ToNumber(large));
    EXPECT_FALSE(StringC(L"1").ToNumber(large, 1));
}

TEST(String, DoublesFollowNoLocale)
{
    double number = 0;
    EXPECT_TRUE(StringC(L" -1.25e3 ").ToNumber(number));
    EXPECT_EQ(number, -1250.0);
    EXPECT_FALSE(StringC(L"1,25").ToNumber(number));
    EXPECT_FALSE(StringC(L"1e999").ToNumber(number));
    EXPECT_EQ(StringC::FromNumber(0.1), L"0.1");
    EXPECT_EQ(StringC::FromNumber(-1e300), L"-1e+300");
}

TEST(String, NumbersAreWritten)
{
    EXPECT_EQ(StringC::FromNumber(std::int64_t{-42}), L"-42");
    EXPECT_EQ(StringC::FromNumber(std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
    EXPECT_EQ(StringC::FromNumber(std::uint64_t{255}, 16), L"ff");
    EXPECT_EQ(StringC::FromNumber(5), L"5");
    EXPECT_EQ(StringC::FromNumber(5u), L"5");
    EXPECT_EQ(StringC::FromNumber(-5L), L"-5");
    EXPECT_EQ(StringC::FromNumber(static_cast<short>(-5)), L"-5");
    EXPECT_EQ(StringC::FromNumber(std::numeric_limits<std::int64_t>::min(), 2),
              L"-1" + std::wstring(63, L'0'));
    EXPECT_EQ(StringC::FromNumber(5, 1), L"");
    EXPECT_EQ(StringC::FromNumber(2.5f), L"2.5");
}

TEST(StringBlock, GrowsByHalfButNeverBeyondTheLongestText)
{
    using BSS::UTI::TextBlockC;
    constexpr std::size_t MOST = std::size_t{1} << 31;
    EXPECT_EQ(TextBlockC::GrownCapacity(16), 16u);
    EXPECT_EQ(TextBlockC::GrownCapacity(100), 150u);
    EXPECT_EQ(TextBlockC::GrownCapacity(MOST - 10), MOST);
    EXPECT_EQ(TextBlockC::GrownCapacity(MOST), MOST);
}

} // namespace
