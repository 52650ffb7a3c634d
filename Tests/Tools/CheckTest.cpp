// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Tools/CheckTest.h"

namespace CheckTest {

QsbBytes CleanHeader(std::uint32_t id)
{
    QsbBytes file;
    file.Block(id);
    for (std::uint32_t axis = 0; axis < 3; ++axis)
        file.DoubleEntry(2 + axis, 0.0);
    for (std::uint32_t axis = 0; axis < 3; ++axis)
        file.DoubleEntry(5 + axis, 15.0);
    file.Matrix({0, -1, 0, 10, 1, 0, 0, 20, 0, 0, 1, 30, 0, 0, 0, 1}).Entry(7, 24, 1).Entry(7, 25, 15);
    return file.DoubleEntry(26, 1.5)
        .Entry(40, 100, 12)
        .Entry(5, 101, 2)
        .Entry(2, 102, 1)
        .Entry(21, 103, 4)
        .Entry(7, 104, 4);
}

BytesT CleanPoints(std::uint32_t points)
{
    BytesT data;
    for (std::uint32_t i = 0; i < points; ++i) {
        const auto x = static_cast<float>(i);
        const BytesT point =
            Support::Bytes(x, x, x, static_cast<std::uint16_t>(1000 + i), std::uint8_t{7}, std::uint16_t{0},
                           static_cast<std::uint16_t>(i), std::uint32_t{0xFF302010});
        data.insert(data.end(), point.begin(), point.end());
    }
    return data;
}

QsbBytes CleanScan(std::uint32_t points, std::uint32_t id)
{
    return CleanHeader(id).Data(CleanPoints(points));
}

std::size_t EntryOffset(const QsbBytes& file, std::uint32_t tag)
{
    std::size_t offset = file.BlockOffset() + 12;
    while (Support::NumberAt(file.Get(), offset + 4, 4) != tag)
        offset += 16;
    return offset;
}

Tool::ScanCheckC Check(const BytesT& bytes, bool bDeep)
{
    Tool::MemoryInputC input(bytes.data(), bytes.size());
    return Tool::CheckScan(input, bDeep, [](std::uint64_t) {});
}

const Tool::FindingC* Find(const Tool::ScanCheckC& check, const std::string& id)
{
    for (const Tool::FindingC& finding : check.oFindings.GetKept()) {
        if (Tool::TextOf(finding.eRule).szId == id) return &finding;
    }
    return nullptr;
}

std::string Found(const Tool::ScanCheckC& check)
{
    std::string found;
    for (const Tool::FindingC& finding : check.oFindings.GetKept()) {
        if (!found.empty()) found += ' ';
        found += std::string(Tool::NameOf(finding.eSeverity)) + ' ' + Tool::TextOf(finding.eRule).szId;
    }
    return found;
}

testing::AssertionResult FindsOnly(const Tool::ScanCheckC& check, const std::string& findings)
{
    const std::string found = Found(check);
    if (found == findings) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "found: " << found << "\nnot:   " << findings;
}

} // namespace CheckTest
