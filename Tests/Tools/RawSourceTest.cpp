// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The raw form: what its header may say, and what is refused.
#include "Tools/ConvertTest.h"
#include "Tools/Qsb/Tool_RawHeader.h"

#include <array>

namespace {

using Support::DamageToldBy;
using Support::SourceInMemory;
using ValuesT = std::vector<std::vector<double>>;

std::string Header(const std::string& keys, const std::string& fields = R"({"name": "x", "type": "u8"})")
{
    return "{" + keys + R"(, "fields": [)" + fields + "]}";
}

std::string DamageOf(const std::string& header, const std::string& data = "ab")
{
    return DamageToldBy([&] { (void)SourceInMemory::Raw(header, data).ReadAll(); });
}

TEST(RawSource, ReadsEveryNumberType)
{
    const std::string fields =
        R"({"name": "a", "type": "i8"}, {"name": "b", "type": "u8"}, {"name": "c", "type": "i16"},
        {"name": "d", "type": "u16"}, {"name": "e", "type": "i32"}, {"name": "f", "type": "u32"},
        {"name": "g", "type": "f32"}, {"name": "h", "type": "f64"})";
    const std::string data(
        "\xff\xff\xfe\xff\xfe\xff\xfe\xff\xff\xff\xfe\xff\xff\xff\0\0\x80\x3f\0\0\0\0\0\0\0\xc0", 26);
    EXPECT_EQ(
        SourceInMemory::Raw(Header(R"("points": 1, "record_size": 26, "byte_order": "little")", fields), data)
            .ReadAll(),
        (ValuesT{{-1}, {255}, {-2}, {65534}, {-2}, {4294967294.0}, {1.0}, {-2.0}}));
}

TEST(RawSource, KnowsPoseGridAndHeightAndNamesOtherKeys)
{
    const auto source = SourceInMemory::Raw(
        Header(
            R"("points": 0, "pose": [1,0,0,5, 0,1,0,6, 0,0,1,7, 0,0,0,1], "grid": [3, 4], "instrument_height": 1.5,
                  "name": "n", "units": "metre", "nothing": null)"),
        "");
    const Tool::ScanFrameC& header = source->GetHeader();
    EXPECT_EQ(header.oPose, (std::array<double, 16>{1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 0, 0, 0, 1}));
    EXPECT_EQ(header.oGrid, (std::array<std::uint64_t, 2>{3, 4}));
    EXPECT_EQ(header.oInstrumentHeight, 1.5);
    ASSERT_EQ(source->GetExtras().size(), 1u);
    EXPECT_EQ(source->GetExtras()[0].strName, "key units");
}

TEST(RawSource, AHeaderWrittenIsAHeaderRead)
{
    Tool::RawHeaderC header;
    header.ullPoints = 7;
    header.vecFields = {{"x", Tool::NumberTypeT::Float}, {"intensity", Tool::NumberTypeT::Int16}};
    header.oScan.oPose = {{0.1, 0, 0, 1e300, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    header.oScan.oGrid = {{4294967296u, 2}};
    header.oScan.oInstrumentHeight = 0.1;
    const std::string text = Tool::RawHeaderText(header, "scan");
    const Tool::RawHeaderC read = Tool::ReadRawHeader(Support::InMemory("a.json", text));
    EXPECT_EQ(read.ullPoints, 7u);
    EXPECT_EQ(read.GetRecordBytes(), 6u);
    EXPECT_EQ(read.oScan.oPose, header.oScan.oPose);
    EXPECT_EQ(read.oScan.oGrid, header.oScan.oGrid);
    EXPECT_EQ(read.oScan.oInstrumentHeight, header.oScan.oInstrumentHeight);
    EXPECT_TRUE(read.vecExtras.empty());
}

TEST(RawSource, APathNamesBothFiles)
{
    const auto both = std::make_pair(std::string("d/a.json"), std::string("d/a.bin"));
    EXPECT_EQ(Tool::RawPaths("d/a.json"), both);
    EXPECT_EQ(Tool::RawPaths("d/a.bin"), both);
    EXPECT_EQ(Tool::RawPaths("d/a"), both);
    EXPECT_EQ(Tool::RawPaths("A.JSON").second, "A.bin");
}

struct BadHeaderT
{
    std::string strHeader;
    std::string strMessage;
};

void PrintTo(const BadHeaderT& row, std::ostream* stream)
{
    Support::PrintAsName(std::to_string(row.strHeader.size()) + " " + row.strMessage, stream);
}

class BadRawHeader : public testing::TestWithParam<BadHeaderT>
{};

TEST_P(BadRawHeader, IsRefusedWithTheReason)
{
    EXPECT_EQ(DamageOf(GetParam().strHeader), GetParam().strMessage);
}

INSTANTIATE_TEST_SUITE_P(
    RawSource, BadRawHeader,
    testing::Values(
        BadHeaderT{"[]", "a.json: is no JSON object"},
        BadHeaderT{Header(R"("a": 1)"), "a.json: \"points\" is missing"},
        BadHeaderT{Header(R"("points": -1)"),
                   "a.json: \"points\" must be a whole number from 0 to 9007199254740992"},
        BadHeaderT{Header(R"("points": 2.0)"),
                   "a.json: \"points\" must be a whole number from 0 to 9007199254740992"},
        BadHeaderT{Header(R"("points": "2")"),
                   "a.json: \"points\" must be a whole number from 0 to 9007199254740992"},
        BadHeaderT{Header(R"("points": 2, "points": 2)"), "a.json: \"points\" stands twice"},
        BadHeaderT{Header(R"("points": 2, "byte_order": "big")"),
                   "a.json: \"byte_order\" must be \"little\""},
        BadHeaderT{Header(R"("points": 2, "record_size": 3)"),
                   "a.json: \"record_size\" is 3, but the fields take 1 bytes"},
        BadHeaderT{Header(R"("points": 2, "pose": [1, 2])"),
                   "a.json: \"pose\" must be null or 16 numbers, row by row"},
        BadHeaderT{Header(R"("points": 2, "pose": [1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,"a"])"),
                   "a.json: \"pose\"[15] must be a number"},
        BadHeaderT{Header(R"("points": 2, "grid": [0, 1])"),
                   "a.json: \"grid\" must have at least one row and one column"},
        BadHeaderT{Header(R"("points": 2, "grid": [4294967297, 1])"),
                   "a.json: \"grid\"[0] must be a whole number from 0 to 4294967296"},
        BadHeaderT{Header(R"("points": 2, "instrument_height": "1")"),
                   "a.json: \"instrument_height\" must be a number"},
        BadHeaderT{R"({"points": 2})", "a.json: \"fields\" is missing"},
        BadHeaderT{Header(R"("points": 2)", ""), "a.json: \"fields\" must be a list of 1 to 1000 fields"},
        BadHeaderT{Header(R"("points": 2)", "1"), "a.json: field 0 must have a \"name\" that is text"},
        BadHeaderT{Header(R"("points": 2)", R"({"name": "x"})"),
                   "a.json: field 0 must have a \"type\" that is text"},
        BadHeaderT{
            Header(R"("points": 2)", R"({"name": "x", "type": "u64"})"),
            "a.json: field \"x\" has the type \"u64\"; types are i8, u8, i16, u16, i32, u32, f32, f64"},
        BadHeaderT{Header(R"("points": 2)", R"({"name": "x", "type": "u8"}, {"name": "x", "type": "u8"})"),
                   "a.json: field \"x\" stands twice"},
        BadHeaderT{Header(R"("points": 3)"),
                   "a.bin: its 2 bytes are 2 records of 1 bytes and 0 more, but a.json says 3 points"},
        BadHeaderT{Header(R"("points": 1)", R"({"name": "x", "type": "f64"})"),
                   "a.bin: its 2 bytes are 0 records of 8 bytes and 2 more, but a.json says 1 points"}));

TEST(RawSource, AHeaderThatIsNoJsonIsRefusedWithThePlace)
{
    EXPECT_NE(DamageOf("{\n \"points\": ,\n}").find("a.json: parse error at line 2, column 12"),
              std::string::npos);
    EXPECT_NE(DamageOf("").find("a.json: parse error at line 1"), std::string::npos);
    EXPECT_NE(DamageOf(Header(R"("points": 2, "instrument_height": 1e999)")).find("a.json: "),
              std::string::npos);
}

TEST(RawSource, AHeaderThatIsDeepOrHugeIsRefused)
{
    EXPECT_EQ(DamageOf(Header("\"a\": " + std::string(100000, '['))), "a.json: nested more than 16 deep");
    EXPECT_NE(DamageOf(std::string(1100000, ' ')).find("more than 1048576 bytes"), std::string::npos);
}

TEST(RawSource, RefusesEveryTruncationOfItsFiles)
{
    const std::string header = Header(R"("points": 2)"), data = "ab";
    EXPECT_EQ(DamageOf(header, data), "nothing");
    for (std::size_t n = 0; n < header.size(); ++n)
        EXPECT_NE(DamageOf(header.substr(0, n), data), "nothing") << n;
    for (std::size_t n = 0; n < data.size(); ++n)
        EXPECT_NE(DamageOf(header, data.substr(0, n)), "nothing") << n;
}

} // namespace
