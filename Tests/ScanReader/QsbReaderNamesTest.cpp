// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Which names a file can have.
#include "ReaderTest.h"

#include <clocale>

namespace {

using namespace ReaderTest;

class Named : public Fixture, public testing::WithParamInterface<const char*>
{};

TEST_P(Named, AFileOfThisNameOpensAndReads)
{
    ASSERT_EQ(reader.Open(folder.Write(GetParam(), Support::SmallScan(2)).c_str()), 0);
    QsbReadIterator iterator(5);
    EXPECT_EQ(Read(iterator).count, 2u);
}

TEST_P(Named, AFileOfThisNameOpensInTheUsersLocaleToo)
{
    const std::string path = folder.Write(GetParam(), Support::SmallScan(2));
    std::setlocale(LC_ALL, "C.UTF-8");
    EXPECT_EQ(reader.Open(path.c_str()), 0);
    std::setlocale(LC_ALL, "C");
}

INSTANTIATE_TEST_SUITE_P(Utf8, Named,
                         testing::Values("plain.qsb", "with space.qsb", "no extension", ".hidden",
                                         "percent%s%n.qsb", "M\xC3\xBCller.qsb",
                                         "\xE6\xB8\xAC\xE9\x87\x8F.qsb", "\xF0\x9F\x93\x90.qsb",
                                         "e\xCC\x81.qsb"));

class Path : public Fixture
{};

TEST_F(Path, AVeryLongPathIsNoQsbFile)
{
    EXPECT_EQ(reader.Open(std::string(100000, 'a').c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
    EXPECT_EQ(Open(Support::SmallScan(1)), 0);
}

TEST_F(Path, AVeryLongPathOfFoldersIsNoQsbFile)
{
    std::string path = folder.Path("");
    for (int i = 0; i < 50000; ++i)
        path += "a/";
    EXPECT_EQ(reader.Open(path.c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Path, AFileNamedLikeAFolderIsNoQsbFile)
{
    EXPECT_EQ(reader.Open((folder.Write("scan.qsb", Support::SmallScan(1)) + "/").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(Path, AFolderIsNoQsbFile)
{
    EXPECT_EQ(reader.Open(folder.Path("").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

} // namespace
