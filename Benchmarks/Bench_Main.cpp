// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// Chooses the cases that are run.
#include "Bench_Cases.h"
#include "Sio/Sio_InstructionSet.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

struct CaseT
{
    const char* pszName;
    const char* pszWhat;
    void (*run)(const Bench::OptionsT& options);
};

constexpr CaseT s_aCases[] = {
    {"read", "reading, for each layout and instruction set, against copying and the virtual calls",
     &Bench::RunRead},
    {"batches", "reading in batches of 100 to 100000", &Bench::RunBatches},
    {"sizes", "reading files of 1e6 to 2e7 points, and behind many blocks", &Bench::RunSizes},
    {"memory", "peak memory of reading hostile and large files", &Bench::RunMemory},
    {"open", "opening chains of a million blocks against reading their bytes", &Bench::RunOpen},
    {"write", "writing against copying and the virtual calls", &Bench::RunWrite},
    {"threads", "two readers on two threads against two plain copies", &Bench::RunThreads},
    {"peers", "the same points in other formats, read by what else is installed", &Bench::RunPeers},
    {"export", "the command exporting 20 million points to PLY", &Bench::RunExport},
};

int Help(int iExitCode)
{
    std::printf(
        "usage: scanreader_bench [--rounds N] [--dir DIRECTORY] [CASE...]\n\ncases, all without saying:\n");
    for (const CaseT& each : s_aCases)
        std::printf("  %-8s %s\n", each.pszName, each.pszWhat);
    return iExitCode;
}

const CaseT* FindCase(const char* pszName)
{
    for (const CaseT& each : s_aCases) {
        if (std::strcmp(each.pszName, pszName) == 0) return &each;
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--read-and-tell-memory") == 0)
        return Bench::ReadAndPrintPeakMemory(argv[2]);
    Bench::OptionsT options;
    char acProgram[4096] = "";
    if (readlink("/proc/self/exe", acProgram, sizeof acProgram - 1) < 0) return 1;
    options.strProgram = acProgram;
    std::vector<const CaseT*> chosen;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) return Help(0);
        if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
            options.nRounds = std::atoi(argv[++i]);
        } else if (std::strcmp(argv[i], "--dir") == 0 && i + 1 < argc) {
            options.strDirectory = argv[++i];
        } else if (const CaseT* const found = FindCase(argv[i])) {
            chosen.push_back(found);
        } else {
            return Help(2);
        }
    }
    if (options.nRounds < 1) return Help(2);
    if (chosen.empty()) {
        for (const CaseT& each : s_aCases)
            chosen.push_back(&each);
    }
    SIO::SetInstructionSet(SIO::QsbInstructionSetT::eAvx2);
    if (SIO::GetInstructionSet() != SIO::QsbInstructionSetT::eAvx2)
        std::printf("This machine has no AVX2: what is called so below is the baseline.\n\n");
    for (const CaseT* const each : chosen) {
        std::printf("== %s: %s\n", each->pszName, each->pszWhat);
        each->run(options);
        std::printf("\n");
    }
    Bench::PrintSummary(options.nRounds);
    return 0;
}
