// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Bss/Bss_Dbg/BSS_DBG_LogFileName.h"

#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Uti/BSS_UTI_Format.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <string_view>

namespace BSS::DBG {

namespace {

constexpr std::size_t LONGEST_NAME = 160;
constexpr unsigned LARGEST_COUNT = 999;
constexpr std::string_view FORBIDDEN = "/\\:*?\"<>|%";
constexpr std::string_view DEVICES[] = {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"};
constexpr std::string_view NUMBERED_DEVICES[] = {"COM", "LPT"};

std::string Escaped(char character)
{
    return UTI::Format("%%%02X", static_cast<unsigned char>(character));
}

bool IsForbidden(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F || FORBIDDEN.find(character) != std::string_view::npos;
}

// One digit, which may be a raised one.
bool IsDeviceDigit(std::string_view text)
{
    if (text.size() == 1) return text[0] >= '0' && text[0] <= '9';
    return text == "\xC2\xB9" || text == "\xC2\xB2" || text == "\xC2\xB3";
}

bool IsDevice(std::string_view name)
{
    std::string stem(name.substr(0, name.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    std::transform(stem.begin(), stem.end(), stem.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    const auto numbered = [&stem](std::string_view device) {
        return stem.starts_with(device) && IsDeviceDigit(std::string_view(stem).substr(device.size()));
    };
    return std::find(std::begin(DEVICES), std::end(DEVICES), stem) != std::end(DEVICES) ||
           std::any_of(std::begin(NUMBERED_DEVICES), std::end(NUMBERED_DEVICES), numbered);
}

// A dot with nothing but a number behind it is how an older file is named.
void EscapeDotOfNumber(std::string& name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot + 1 == name.size()) return;
    if (name.find_first_not_of("0123456789", dot + 1) != std::string::npos) return;
    name.replace(dot, 1, Escaped('.'));
}

std::uint64_t Checksum(const std::string& text)
{
    std::uint64_t sum = 0xCBF29CE484222325u; // FNV-1a
    for (const char character : text)
        sum = (sum ^ static_cast<unsigned char>(character)) * 0x100000001B3u;
    return sum;
}

bool Exists(const std::wstring& path)
{
    boost::system::error_code ignored;
    return boost::filesystem::exists(boost::filesystem::symlink_status(HAL::FilesystemPath(path), ignored));
}

bool MoveIfThere(const std::wstring& from, const std::wstring& to)
{
    return !Exists(from) || HAL::RenameOver(from, to) == HAL::RenameResult::Done;
}

} // namespace

std::wstring LogFileNameOf(const std::string& consumerName)
{
    std::string name;
    for (const char character : consumerName)
        name += IsForbidden(character) ? Escaped(character) : std::string(1, character);
    if (name.empty() || name.front() == '.' || IsDevice(name))
        name = name.empty() ? "%" : Escaped(name.front()) + name.substr(1);
    EscapeDotOfNumber(name);
    if (name.size() > LONGEST_NAME)
        name = name.substr(0, LONGEST_NAME) + UTI::Format("~%016I64x", Checksum(consumerName));
    return HAL::WidePath(name + ".txt");
}

std::wstring OlderLogFile(const std::wstring& path, unsigned number)
{
    const std::size_t dot = path.rfind(L'.');
    const std::size_t separator = path.find_last_of(L"/\\");
    const bool extension = dot != std::wstring::npos && (separator == std::wstring::npos || dot > separator);
    const std::wstring middle = L"." + std::to_wstring(number);
    return extension ? path.substr(0, dot) + middle + path.substr(dot) : path + middle;
}

bool RotateLogFiles(const std::wstring& path, unsigned nOlderFiles)
{
    const unsigned count = std::min(nOlderFiles, LARGEST_COUNT);
    // Those that a larger count has left.
    for (unsigned number = count + 1; Exists(OlderLogFile(path, number)); ++number)
        if (!HAL::RemoveFile(OlderLogFile(path, number))) break;
    if (count == 0) return HAL::RemoveFile(path);
    bool moved = true;
    for (unsigned number = count; moved && number > 1; --number)
        moved = MoveIfThere(OlderLogFile(path, number - 1), OlderLogFile(path, number));
    return moved && HAL::RenameOver(path, OlderLogFile(path, 1)) == HAL::RenameResult::Done;
}

} // namespace BSS::DBG
