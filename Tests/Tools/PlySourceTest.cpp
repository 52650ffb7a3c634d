// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// PLY files as they are found, and as nobody should write them.
#include "Sio/Sio_LittleEndian.h"
#include "Tools/ConvertTest.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Support::DamageToldBy;
using Support::SourceInMemory;
using ValuesT = std::vector<std::vector<double>>;

std::string Ply(const std::string& header, const std::string& data)
{
    return "ply\n" + header + "end_header\n" + data;
}

template<typename T>
std::string Bytes(T value, bool bBigEndian = false)
{
    std::string bytes(sizeof(T), '\0');
    SIO::StoreLittleEndian(bytes.data(), value);
    if (bBigEndian) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string DamageOf(const std::string& file)
{
    return DamageToldBy([&] { (void)SourceInMemory::Ply(file).ReadAll(); });
}

const std::string s_strXyz = "property float x\nproperty float y\nproperty float z\n";

TEST(PlySource, ReadsAsciiWithEveryNumberType)
{
    const auto source = SourceInMemory::Ply(Ply(
        "format ascii 1.0\nelement vertex 2\nproperty char a\nproperty uchar b\nproperty short c\nproperty "
        "ushort d\n"
        "property int e\nproperty uint f\nproperty float g\nproperty double h\n",
        "-128 255 -32768 65535 -2147483648 4294967295 0.1 0.1\n127 0 32767 0 2147483647 0 -1e-3 +1.5e300\n"));
    EXPECT_EQ(source.ReadAll(), (ValuesT{{-128, 127},
                                         {255, 0},
                                         {-32768, 32767},
                                         {65535, 0},
                                         {-2147483648.0, 2147483647.0},
                                         {4294967295.0, 0},
                                         {static_cast<double>(0.1f), static_cast<double>(-1e-3f)},
                                         {0.1, 1.5e300}}));
}

class PlyByteOrder : public testing::TestWithParam<bool>
{};

TEST_P(PlyByteOrder, ReadsBinaryWithEveryNumberType)
{
    const bool bBig = GetParam();
    const std::string data = Bytes<std::int8_t>(-2, bBig) + Bytes<std::uint8_t>(200, bBig) +
                             Bytes<std::int16_t>(-300, bBig) + Bytes<std::uint16_t>(60000, bBig) +
                             Bytes<std::int32_t>(-70000, bBig) + Bytes<std::uint32_t>(4000000000, bBig) +
                             Bytes(1.25f, bBig) + Bytes(-0.1, bBig);
    const auto source = SourceInMemory::Ply(Ply(
        std::string("format ") + (bBig ? "binary_big_endian" : "binary_little_endian") +
            " 1.0\nelement vertex 1\nproperty int8 a\nproperty uint8 b\nproperty int16 c\nproperty uint16 d\n"
            "property int32 e\nproperty uint32 f\nproperty float32 g\nproperty float64 h\n",
        data));
    EXPECT_EQ(source.ReadAll(),
              (ValuesT{{-2}, {200}, {-300}, {60000}, {-70000}, {4000000000.0}, {1.25}, {-0.1}}));
}

INSTANTIATE_TEST_SUITE_P(PlySource, PlyByteOrder, testing::Bool());

TEST(PlySource, ReadsNanAndInfinityInAscii)
{
    const ValuesT values = SourceInMemory::Ply(Ply("format ascii 1.0\nelement vertex 3\nproperty float x\n",
                                                   "nan\n-inf\nInfinity\n"))
                               .ReadAll();
    EXPECT_TRUE(std::isnan(values[0][0]));
    EXPECT_EQ(values[0][1], -INFINITY);
    EXPECT_EQ(values[0][2], INFINITY);
}

TEST(PlySource, ReadsCrlfLinesAndDataWithoutALastLineEnd)
{
    const auto source =
        SourceInMemory::Ply("ply\r\nformat ascii 1.0\r\nelement vertex 2\r\nproperty int x\r\n"
                            "end_header\r\n1\r\n\r\n2");
    EXPECT_EQ(source.ReadAll(), (ValuesT{{1, 2}}));
}

TEST(PlySource, ReadsBinaryDataAfterACrlfHeader)
{
    const auto source = SourceInMemory::Ply("ply\r\nformat binary_little_endian 1.0\r\nelement vertex 1\r\n"
                                            "property uchar x\r\nend_header\r\n\x0a");
    EXPECT_EQ(source.ReadAll(), (ValuesT{{10}}));
}

TEST(PlySource, PassesOverElementsBeforeTheVerticesWithTheirLists)
{
    const std::string header =
        "element camera 1\nproperty float a\nproperty uchar b\nelement face 2\n"
        "property list uchar int vertex_indices\nproperty uchar flags\nelement vertex 1\n"
        "property uchar x\nelement edge 1\nproperty int a\n";
    const auto ascii =
        SourceInMemory::Ply(Ply("format ascii 1.0\n" + header, "0.5 1\n3 0 1 2 9\n0 8\n42\n7\n"));
    EXPECT_EQ(ascii.ReadAll(), (ValuesT{{42}}));
    const std::string bytes = Bytes(0.5f) + '\1' + '\3' + Bytes(0) + Bytes(1) + Bytes(2) + '\11' +
                              std::string(1, '\0') + '\10' + '\52' + Bytes(7);
    const auto binary = SourceInMemory::Ply(Ply("format binary_little_endian 1.0\n" + header, bytes));
    EXPECT_EQ(binary.ReadAll(), (ValuesT{{42}}));
    EXPECT_EQ(binary->GetExtras().size(), 3u);
}

TEST(PlySource, PassesOverListsOfTheVertices)
{
    const std::string header =
        "element vertex 2\nproperty uchar x\nproperty list uchar ushort n\nproperty uchar y\n";
    const auto ascii = SourceInMemory::Ply(Ply("format ascii 1.0\n" + header, "1 2 500 600 3\n4 0 5\n"));
    EXPECT_EQ(ascii.ReadAll(), (ValuesT{{1, 4}, {3, 5}}));
    const auto binary = SourceInMemory::Ply(
        Ply("format binary_little_endian 1.0\n" + header, std::string("\1\2abcd\3\4\0\5", 10)));
    EXPECT_EQ(binary.ReadAll(), (ValuesT{{1, 4}, {3, 5}}));
    EXPECT_TRUE(binary->GetExtras()[0].bData);
}

TEST(PlySource, ReadsChosenFieldsInTheOrderAskedForAndAgain)
{
    for (const std::string format : {"ascii", "binary_little_endian"}) {
        const auto source = SourceInMemory::Ply(Ply("format " + format +
                                                        " 1.0\nelement vertex 2\nproperty uchar x\n"
                                                        "property uchar y\nproperty uchar z\n",
                                                    format == "ascii" ? "1 2 3\n4 5 6\n" : "\1\2\3\4\5\6"));
        ValuesT values;
        for (int i = 0; i < 2; ++i) {
            source->Select({2, 0});
            EXPECT_EQ(source->Read(values), 2u);
            EXPECT_EQ(values, (ValuesT{{3, 6}, {1, 4}}));
            EXPECT_EQ(source->Read(values), 0u);
        }
    }
}

TEST(PlySource, ReadsMorePointsThanABatchTakes)
{
    std::string data;
    for (int i = 0; i < 25001; ++i)
        data += std::to_string(i) + "\n";
    const ValuesT values =
        SourceInMemory::Ply(Ply("format ascii 1.0\nelement vertex 25001\nproperty int x\n", data)).ReadAll();
    ASSERT_EQ(values[0].size(), 25001u);
    for (std::size_t i = 0; i < 25001; ++i)
        ASSERT_EQ(values[0][i], static_cast<double>(i));
}

TEST(PlySource, TakesPoseGridAndHeightFromItsOwnComments)
{
    const auto source = SourceInMemory::Ply(
        Ply("format ascii 1.0\ncomment made by hand\ncomment qsb pose 1 0 0 5 0 1 0 6 0 0 1 7 0 0 0 1\n"
            "comment qsb grid 3 4\ncomment qsb instrument_height 1.75\nobj_info none\n"
            "element vertex 0\n" +
                s_strXyz,
            ""));
    const Tool::ScanFrameC& header = source->GetHeader();
    EXPECT_EQ(header.oPose, (std::array<double, 16>{1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 0, 0, 0, 1}));
    EXPECT_EQ(header.oGrid, (std::array<std::uint64_t, 2>{3, 4}));
    EXPECT_EQ(header.oInstrumentHeight, 1.75);
    ASSERT_EQ(source->GetExtras().size(), 1u);
    EXPECT_EQ(source->GetExtras()[0].strName, "2 comments");
}

struct BadPlyT
{
    std::string strFile;
    std::string strMessage;
};

void PrintTo(const BadPlyT& row, std::ostream* stream)
{
    Support::PrintAsName(std::to_string(row.strFile.size()) + " " + row.strMessage, stream);
}

class BadPly : public testing::TestWithParam<BadPlyT>
{};

TEST_P(BadPly, IsRefusedWithThePlace)
{
    EXPECT_EQ(DamageOf(GetParam().strFile), "a.ply: " + GetParam().strMessage);
}

const std::string s_strOne = "format ascii 1.0\nelement vertex 1\nproperty uchar x\n";
const std::string s_strBinary = "format binary_little_endian 1.0\nelement vertex 4\nproperty uint x\n";

INSTANTIATE_TEST_SUITE_P(
    PlySource, BadPly,
    testing::Values(
        BadPlyT{"", "line 1: is no PLY file: the first line is not \"ply\""},
        BadPlyT{"plyx\n", "line 1: is no PLY file: the first line is not \"ply\""},
        BadPlyT{"ply\nformat ascii 1.0\n", "line 3: the file ends before \"end_header\""},
        BadPlyT{Ply("element vertex 0\n", ""), "line 3: the header has no \"format\""},
        BadPlyT{Ply("format ascii 2.0\n", ""), "line 2: must be \"format\", one of the formats, \"1.0\""},
        BadPlyT{Ply("format utf8 1.0\n", ""),
                "line 2: \"utf8\" is none of ascii, binary_little_endian, binary_big_endian"},
        BadPlyT{Ply("format ascii 1.0\nformat ascii 1.0\n", ""), "line 3: a second \"format\""},
        BadPlyT{Ply("formal\n", ""), "line 2: \"formal\" is no header line"},
        BadPlyT{Ply("\x1b[31mred\n", ""), "line 2: \"?[31mred\" is no header line"},
        BadPlyT{Ply("format ascii 1.0\nproperty int x\n", ""), "line 3: a property before the first element"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex -1\n", ""),
                "line 3: must be \"element\", a name, a number up to 9007199254740992"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex 99999999999999999999\n", ""),
                "line 3: must be \"element\", a name, a number up to 9007199254740992"},
        BadPlyT{Ply(s_strOne + "element vertex 1\n", ""), "line 5: a second element \"vertex\""},
        BadPlyT{Ply(s_strOne + "property uchar x\n", ""), "line 5: a second property \"x\" of one element"},
        BadPlyT{
            Ply("format ascii 1.0\nelement vertex 1\nproperty long x\n", ""),
            "line 4: \"long\" is no type; types are char, uchar, short, ushort, int, uint, float, double"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex 1\nproperty list float int x\n", ""),
                "line 4: the length of a list must be an integer"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex 1\nproperty int\n", ""),
                "line 4: must be \"property\", a type, a name, or \"property list\", two types, a name"},
        BadPlyT{Ply("format ascii 1.0\nelement face 0\nproperty int x\n", ""),
                "has no element \"vertex\", so it has no points"},
        BadPlyT{Ply("format ascii 1.0\ncomment qsb pose 1 2 3\n", ""),
                "line 3: \"pose\" must be followed by 16 finite numbers"},
        BadPlyT{Ply("format ascii 1.0\ncomment qsb instrument_height inf\n", ""),
                "line 3: \"instrument_height\" must be followed by 1 finite numbers"},
        BadPlyT{Ply("format ascii 1.0\ncomment qsb grid 0 4\n", ""),
                "line 3: \"grid\" must be followed by rows and columns, 1 to 4294967296 each"},
        BadPlyT{Ply(s_strOne, "256\n"), "line 6: \"256\" is no uchar"},
        BadPlyT{Ply(s_strOne, "1.5\n"), "line 6: \"1.5\" is no uchar"},
        BadPlyT{Ply(s_strOne, "0x1\n"), "line 6: \"0x1\" is no uchar"},
        BadPlyT{Ply(s_strOne, "1 2\n"), "line 6: more values than the element has properties"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex 2\n" + s_strXyz, "1 2 3\n4 5\n6 7 8\n"),
                "line 9: fewer values than the element has properties"},
        BadPlyT{Ply("format ascii 1.0\nelement vertex 2\n" + s_strXyz, "1 2 3\n4 5555"),
                "line 9: the file ends in the middle of the data"},
        BadPlyT{Ply(s_strBinary, "123456789012345"), "says that 4 records of element vertex begin at byte "
                                                     "80, but the 15 bytes left there hold 3 at most"},
        BadPlyT{Ply("format binary_little_endian 1.0\nelement vertex 1\nproperty list int uchar l\nproperty "
                    "uchar x\n",
                    Bytes(-1) + "x"),
                "byte 111: the length of a list is negative"},
        BadPlyT{Ply("format binary_little_endian 1.0\nelement vertex 1\nproperty list uint double "
                    "l\nproperty uchar x\n",
                    Bytes(0xFFFFFFFFu) + "xyz"),
                "byte 113: 34359738357 bytes of data are missing"}));

TEST(PlySource, RefusesEveryTruncationOfAFile)
{
    const std::string ascii = Ply("format ascii 1.0\nelement vertex 2\n" + s_strXyz, "1 2 3\n4 5 6");
    const std::string binary =
        Ply("format binary_big_endian 1.0\nelement face 1\nproperty list uchar int i\nelement vertex 1\n"
            "property list uchar uchar l\n" +
                s_strXyz,
            std::string("\1abcd\2xy", 8) + std::string(12, 'p'));
    for (const std::string& file : {ascii, binary}) {
        EXPECT_EQ(DamageOf(file), "nothing");
        for (std::size_t n = 0; n < file.size(); ++n)
            EXPECT_NE(DamageOf(file.substr(0, n)), "nothing") << n;
    }
}

TEST(PlySource, AClaimOfManyPointsWithoutBytesTakesNoTimeOrMemory)
{
    EXPECT_NE(
        DamageOf(
            Ply("format binary_little_endian 1.0\nelement vertex 9007199254740992\nproperty double x\n", "")),
        "nothing");
    EXPECT_NE(
        DamageOf(Ply(
            "format ascii 1.0\nelement face 9007199254740992\nproperty list uchar int i\nelement vertex 1\n"
            "property uchar x\n",
            "0\n")),
        "nothing");
    const auto source = SourceInMemory::Ply(
        Ply("format ascii 1.0\nelement void 9007199254740992\nelement vertex 1\nproperty uchar x\n", "7\n"));
    EXPECT_EQ(source.ReadAll(), (ValuesT{{7}}));
}

TEST(PlySource, EndlessLinesWordsAndHeadersAreRefused)
{
    EXPECT_EQ(DamageOf("ply\ncomment " + std::string(100000, 'x')), "a.ply: line 2: longer than 16384 bytes");
    EXPECT_EQ(DamageOf(Ply(s_strOne, std::string(100000, '1'))),
              "a.ply: line 6: a word longer than 1000 bytes");
    std::string comments;
    while (comments.size() < 1100000)
        comments += "comment a remark of no use to anyone at all\n";
    EXPECT_NE(DamageOf(Ply(comments, "")).find("the header takes more than 1048576 bytes"),
              std::string::npos);
}

} // namespace
