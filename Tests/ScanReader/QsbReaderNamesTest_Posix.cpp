// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Names and things that only a POSIX file system has.
#include "ReaderTest.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace ReaderTest;

class PosixPath : public Fixture
{
protected:
    /// Acts as a user who owns nothing while it lives, where the process may become one.
    class Nobody
    {
    public:
        Nobody() : m_changed(::geteuid() == 0 && ::seteuid(65534) == 0) {}
        ~Nobody() { m_restored = !m_changed || ::seteuid(0) == 0; }
        Nobody(const Nobody&) = delete;
        Nobody& operator=(const Nobody&) = delete;

    private:
        bool m_changed;
        bool m_restored = false;
    };
};

TEST_F(PosixPath, ANameThatIsNotUtf8Opens)
{
    const std::string names[] = {
        "M\xFCller.qsb",          "\xFF\xFE",         "half \xE6\xB8", "\x80", "mixed \xC3\xBC \xFC",
        "surrogate \xED\xB2\x80", "overlong \xC0\xAF"};
    for (const std::string& name : names) {
        // Some file systems hold UTF-8 names only.
        std::FILE* file = std::fopen(folder.Path(name).c_str(), "wb");
        if (file == nullptr) GTEST_SKIP() << "no such names here";
        std::fclose(file);
        EXPECT_EQ(reader.Open(folder.Write(name, Support::SmallScan(2)).c_str()), 0) << name;
        QsbReadIterator iterator(5);
        EXPECT_EQ(Read(iterator).count, 2u);
        reader.Close();
    }
}

TEST_F(PosixPath, ASymbolicLinkToAFileOpensAndADanglingOneDoesNot)
{
    const std::string target = folder.Write("scan.qsb", Support::SmallScan(2));
    ASSERT_EQ(::symlink(target.c_str(), folder.Path("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", folder.Path("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("loop", folder.Path("loop").c_str()), 0);
    EXPECT_EQ(reader.Open(folder.Path("link").c_str()), 0);
    reader.Close();
    EXPECT_EQ(reader.Open(folder.Path("dangling").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
    EXPECT_EQ(reader.Open(folder.Path("loop").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(PosixPath, APipeIsNoQsbFileAndIsNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(reader.Open(folder.Path("pipe").c_str()), -1);
    EXPECT_EQ(Message(), s_szNoQsbFile);
}

TEST_F(PosixPath, DevicesAreNoQsbFiles)
{
    for (const char* device : {"/dev/zero", "/dev/null", "/dev/full", "/dev/tty"}) {
        EXPECT_EQ(reader.Open(device), -1) << device;
        EXPECT_EQ(Message(), s_szNoQsbFile) << device;
    }
}

TEST_F(PosixPath, AFileThatMayNotBeReadIsNoQsbFile)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    {
        const Nobody nobody;
        if (::access(path.c_str(), R_OK) == 0 && ::geteuid() == 0) GTEST_SKIP() << "cannot drop privileges";
        EXPECT_EQ(reader.Open(path.c_str()), -1);
        EXPECT_EQ(Message(), s_szNoQsbFile);
    }
    ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
    EXPECT_EQ(reader.Open(path.c_str()), 0);
}

TEST_F(PosixPath, AFileInAFolderThatMayNotBeEnteredIsNoQsbFile)
{
    const std::string path = folder.Write("scan.qsb", Support::SmallScan(2));
    ASSERT_EQ(::chmod(folder.Path("").c_str(), 0), 0);
    {
        const Nobody nobody;
        if (::geteuid() == 0) GTEST_SKIP() << "cannot drop privileges";
        EXPECT_EQ(reader.Open(path.c_str()), -1);
        EXPECT_EQ(Message(), s_szNoQsbFile);
    }
    ASSERT_EQ(::chmod(folder.Path("").c_str(), 0700), 0);
}

TEST_F(PosixPath, ARemovedFileIsReadToItsEnd)
{
    ASSERT_EQ(Open(Support::SmallScan(4)), 0);
    QsbReadIterator iterator(2);
    EXPECT_EQ(Read(iterator).count, 2u);
    ASSERT_EQ(::unlink(folder.Path("scan.qsb").c_str()), 0);
    EXPECT_EQ(Read(iterator), (ReadResult{0, 2, ""}));
    EXPECT_EQ(iterator.GetPoint(1)->intensity, 103);
    EXPECT_EQ(Read(iterator), s_end);
}

TEST_F(PosixPath, AFileThatShrinksWhileItIsOpenFailsAtItsNewEnd)
{
    ASSERT_EQ(Open(Support::SmallScan(4000)), 0);
    QsbReadIterator iterator(1000);
    EXPECT_EQ(Read(iterator).count, 1000u);
    ASSERT_TRUE(Support::Resize(folder.Path("scan.qsb"), 28 + 12 + 32 + 14 * 2500));
    EXPECT_EQ(Read(iterator).count, 1000u);
    EXPECT_EQ(Read(iterator), s_failed);
    EXPECT_EQ(Read(iterator), s_failed);
    EXPECT_EQ(iterator.GetPoint(999)->intensity, static_cast<std::uint16_t>(100 + 1999));
}

} // namespace
