// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The DLLs loaded, used and unloaded again and again: nothing of theirs stays in the process. Handles are counted by the
// system where it does that, and everywhere by the values it gives to new ones, since it takes the lowest that is free.
#include "Support/ScanFolder.h"

#include <ScanReader/qsb.h>
#include <algorithm>
#include <cstring>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

namespace {

constexpr int LOADS = 1000;
constexpr int WARM_UP = 20; ///< what the system keeps for itself from the first loads is no leak of ours
constexpr std::size_t SLACK_BYTES = 256 * 1024;
/// Handles are numbered in steps of 4. A thread that has just ended may not have given back all of its own yet.
constexpr std::uintptr_t HANDLE_SLACK = 4 * 16;

unsigned CountThreads()
{
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    unsigned threads = 0;
    for (BOOL more = Thread32First(all, &entry); more; more = Thread32Next(all, &entry))
        threads += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    CloseHandle(all);
    return threads;
}

unsigned CountHandles()
{
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return handles;
}

std::uintptr_t HighestNewHandle()
{
    HANDLE events[64] = {};
    std::uintptr_t highest = 0;
    for (HANDLE& event : events) {
        event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        highest = std::max(highest, reinterpret_cast<std::uintptr_t>(event));
    }
    for (const HANDLE event : events)
        CloseHandle(event);
    return highest;
}

// Slots of thread-local memory that are still to be had.
unsigned CountFreeSlots()
{
    std::vector<DWORD> slots;
    for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc())
        slots.push_back(slot);
    for (const DWORD slot : slots)
        TlsFree(slot);
    return static_cast<unsigned>(slots.size());
}

std::size_t PrivateBytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return counters.PrivateUsage;
}

template<typename T>
T Function(HMODULE library, const char* name)
{
    const FARPROC found = GetProcAddress(library, name);
    T function = nullptr;
    static_assert(sizeof function == sizeof found);
    std::memcpy(&function, &found, sizeof function);
    return function;
}

class Loaded : public testing::Test
{
protected:
    // The file is read by a library that is loaded for this alone.
    void LoadReadAndUnload() const
    {
        const HMODULE library = LoadLibraryW(L"ScanReaderC.dll");
        ASSERT_NE(library, nullptr);
        EXPECT_NE(GetModuleHandleW(L"ScanReader.dll"), nullptr);
        const auto open = Function<decltype(&qsb_open)>(library, "qsb_open");
        const auto read = Function<decltype(&qsb_read)>(library, "qsb_read");
        const auto close = Function<decltype(&qsb_close)>(library, "qsb_close");
        qsb_reader* const reader = open(m_scan.c_str(), nullptr, 0);
        ASSERT_NE(reader, nullptr);
        qsb_point points[4];
        std::size_t count = 0;
        EXPECT_EQ(read(reader, points, sizeof points[0], 4, &count), QSB_OK);
        EXPECT_EQ(count, 3u);
        close(reader);
        EXPECT_EQ(open("no such scan", nullptr, 0), nullptr); // and once the way of a failure
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_EQ(GetModuleHandleW(L"ScanReaderC.dll"), nullptr);
        EXPECT_EQ(GetModuleHandleW(L"ScanReader.dll"), nullptr);
    }

    template<typename Cycle>
    static void ExpectNothingLeftBy(Cycle cycle)
    {
        for (int i = 0; i < WARM_UP; ++i)
            cycle();
        const unsigned threads = CountThreads(), handles = CountHandles(), slots = CountFreeSlots();
        const std::uintptr_t highest = HighestNewHandle();
        const std::size_t bytes = PrivateBytes();
        for (int i = 0; i < LOADS && !HasFailure(); ++i)
            cycle();
        EXPECT_EQ(CountThreads(), threads);
        EXPECT_EQ(CountHandles(), handles);
        EXPECT_LE(HighestNewHandle(), highest + HANDLE_SLACK);
        EXPECT_EQ(CountFreeSlots(), slots);
        EXPECT_LT(PrivateBytes(), bytes + SLACK_BYTES);
    }

    const Support::ScanFolder m_folder;
    const std::string m_scan = m_folder.Write("scan.qsb", Support::SmallScan(3));
};

TEST_F(Loaded, AThousandTimesAndUsedTheLibraryLeavesNothing)
{
    ExpectNothingLeftBy([this] { LoadReadAndUnload(); });
}

TEST_F(Loaded, AThousandTimesWithoutUseTheLibraryLeavesNothing)
{
    ExpectNothingLeftBy([] {
        const HMODULE library = LoadLibraryW(L"ScanReader.dll");
        ASSERT_NE(library, nullptr);
        EXPECT_TRUE(FreeLibrary(library));
    });
}

TEST_F(Loaded, AThousandTimesInThreadsThatEndTheLibraryLeavesNothing)
{
    ExpectNothingLeftBy([this] { std::thread([this] { LoadReadAndUnload(); }).join(); });
}

TEST_F(Loaded, ThreadsThatUsedALoadedLibraryLeaveNothingWhenTheyEnd)
{
    const HMODULE library = LoadLibraryW(L"ScanReader.dll");
    ExpectNothingLeftBy([this] {
        std::thread([this] {
            const HMODULE again = LoadLibraryW(L"ScanReaderC.dll");
            const auto open = Function<decltype(&qsb_open)>(again, "qsb_open");
            const auto close = Function<decltype(&qsb_close)>(again, "qsb_close");
            close(open(m_scan.c_str(), nullptr, 0));
            FreeLibrary(again);
        }).join();
    });
    FreeLibrary(library);
}

// The thread that unloads cannot give back what another one holds: two handles each, and no more.
TEST_F(Loaded, AThreadThatLivesLongerThanTheLibraryEndsAndKeepsTwoHandlesAtMost)
{
    constexpr int UNLOADS = 50;
    const auto cycle = [this] {
        const HMODULE library = LoadLibraryW(L"ScanReaderC.dll");
        const auto open = Function<decltype(&qsb_open)>(library, "qsb_open");
        const auto close = Function<decltype(&qsb_close)>(library, "qsb_close");
        std::promise<bool> used;
        std::promise<void> unloaded;
        std::thread user([&] {
            qsb_reader* const reader = open(m_scan.c_str(), nullptr, 0);
            close(reader);
            used.set_value(reader != nullptr);
            unloaded.get_future().wait();
        });
        EXPECT_TRUE(used.get_future().get());
        EXPECT_TRUE(FreeLibrary(library));
        EXPECT_EQ(GetModuleHandleW(L"ScanReader.dll"), nullptr);
        unloaded.set_value();
        user.join();
    };
    for (int i = 0; i < WARM_UP; ++i)
        cycle();
    const unsigned threads = CountThreads(), handles = CountHandles();
    const std::uintptr_t highest = HighestNewHandle();
    for (int i = 0; i < UNLOADS; ++i)
        cycle();
    EXPECT_EQ(CountThreads(), threads);
    EXPECT_LE(CountHandles(), handles + 2 * UNLOADS);
    EXPECT_LE(HighestNewHandle(), highest + 4 * 2 * UNLOADS + HANDLE_SLACK);
}

// RT_VERSION of windows.h is narrow where UNICODE is not defined.
const wchar_t* const s_pVersionType = MAKEINTRESOURCEW(16);

// The name and version that the file's properties show.
TEST_F(Loaded, TheLibrariesCarryTheirVersion)
{
    for (const wchar_t* name : {L"ScanReader.dll", L"ScanReaderC.dll"}) {
        const HMODULE library = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_AS_DATAFILE);
        const HRSRC place = FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO), s_pVersionType);
        ASSERT_NE(place, nullptr);
        const auto* const bytes = static_cast<const std::uint8_t*>(LockResource(LoadResource(library, place)));
        VS_FIXEDFILEINFO info = {};
        std::memcpy(&info, bytes + 40, sizeof info); // behind the sizes and the key "VS_VERSION_INFO"
        EXPECT_EQ(info.dwSignature, 0xFEEF04BDu);
        EXPECT_EQ(info.dwFileVersionMS, static_cast<DWORD>(QSB_VERSION >> 16 << 16 | (QSB_VERSION >> 8 & 0xFF)));
        EXPECT_EQ(info.dwFileType, static_cast<DWORD>(VFT_DLL));
        FreeLibrary(library);
    }
}

} // namespace
