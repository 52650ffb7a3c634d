// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// The file is small and read whole. It is replaced in one step, so a reader never sees half of it.
#include "Bss/Bss_Hal/BSS_HAL_ConfigValue.h"

#include "Bss/Bss_Hal/BSS_HAL_Directories.h"
#include "Bss/Bss_Hal/BSS_HAL_FileReplace.h"
#include "Bss/Bss_Hal/BSS_HAL_Path.h"
#include "Bss/Bss_Hal/BSS_HAL_StaticLock.h"
#include "Bss/Bss_Hal/BSS_HAL_Stream.h"
#include "Bss/Bss_Hal/BSS_HAL_Utf8.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <charconv>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace BSS::HAL {

namespace {

constexpr std::uint64_t MAX_FILE_BYTES = 1 << 20;
constinit StaticLockC s_writeLock;

struct CloseStream
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};
using StreamPtr = std::unique_ptr<std::FILE, CloseStream>;
using LinesT = std::vector<std::string>;

std::wstring ConfigFile()
{
    const std::wstring directory = UserConfigDirectory();
    return directory.empty() ? directory : JoinPath(directory, L"scanreader.conf");
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

LinesT SplitLines(std::string_view text)
{
    LinesT lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

// False when there is a file that cannot be read: writing would then lose what it holds.
bool ReadLines(const std::wstring& path, LinesT& lines)
{
    const StreamPtr stream(OpenStream(path, "rb"));
    std::uint64_t size = 0;
    if (!stream || !StreamSize(stream.get(), size) || size > MAX_FILE_BYTES) return false;
    std::string text(size, '\0');
    if (std::fread(text.data(), 1, text.size(), stream.get()) != text.size()) return false;
    lines = SplitLines(WithoutByteOrderMark(text));
    return true;
}

bool WriteLines(const std::wstring& path, const LinesT& lines)
{
    StreamPtr stream(OpenStream(path, "wb"));
    if (!stream) return false;
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    const bool written = std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size();
    const bool synced = SyncStream(stream.get());
    return std::fclose(stream.release()) == 0 && written && synced;
}

bool IsKeyLine(std::string_view line, std::string_view& key)
{
    line = Trimmed(line);
    if (line.size() < 2 || line.front() != '[' || line.back() != ']') return false;
    key = Trimmed(line.substr(1, line.size() - 2));
    return true;
}

bool IsValueLine(std::string_view line, std::string_view& name, std::string_view& value)
{
    line = Trimmed(line);
    const std::size_t equals = line.find('=');
    if (line.empty() || line.front() == '#' || line.front() == ';' || equals == std::string_view::npos)
        return false;
    name = Trimmed(line.substr(0, equals));
    value = Trimmed(line.substr(equals + 1));
    return true;
}

// Where a value stands, and where it would be put if it is not there.
struct Place
{
    std::optional<std::size_t> line;
    std::optional<std::size_t> insertAt;
};

Place FindValue(const LinesT& lines, const std::string& key, const std::string& name)
{
    Place place;
    bool inside = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view left;
        std::string_view right;
        if (IsKeyLine(lines[i], left)) {
            inside = left == key;
        } else if (inside && IsValueLine(lines[i], left, right) && left == name) {
            place.line = i;
        }
        if (inside && !Trimmed(lines[i]).empty()) place.insertAt = i + 1;
    }
    return place;
}

bool ParseNumber(std::string_view text, std::uint32_t& value)
{
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hexadecimal) text.remove_prefix(2);
    const char* const end = text.data() + text.size();
    std::uint32_t parsed = 0;
    const auto [stopped, error] = std::from_chars(text.data(), end, parsed, hexadecimal ? 16 : 10);
    if (error != std::errc() || stopped != end) return false;
    value = parsed;
    return true;
}

void SetValue(LinesT& lines, const std::string& key, const std::string& name, std::uint32_t value)
{
    const Place place = FindValue(lines, key, name);
    const std::string text = name + " = " + std::to_string(value);
    if (place.line) {
        lines[*place.line] = text;
    } else if (place.insertAt) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(*place.insertAt), text);
    } else {
        lines.push_back("[" + key + "]");
        lines.push_back(text);
    }
}

// A name that cannot be written on a line so that it is read back as itself.
bool IsUnwritable(const std::string& text)
{
    return text.empty() || Trimmed(text) != text || text.find_first_of("\r\n=[]#;") != std::string::npos;
}

bool ReplaceLines(const std::wstring& path, const LinesT& lines)
{
    const std::wstring temporary = TemporaryNameBeside(path);
    const bool done = WriteLines(temporary, lines) && RenameOver(temporary, path) == RenameResult::Done;
    if (!done) static_cast<void>(RemoveFile(temporary));
    return done && SyncDirectoryOf(path);
}

bool FileExists(const std::wstring& path)
{
    boost::system::error_code ignored;
    return boost::filesystem::exists(boost::filesystem::symlink_status(FilesystemPath(path), ignored));
}

} // namespace

bool ReadConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t& value)
{
    LinesT lines;
    const std::wstring path = ConfigFile();
    if (path.empty() || !ReadLines(path, lines)) return false;
    const Place place = FindValue(lines, NarrowPath(key), NarrowPath(name));
    std::string_view left;
    std::string_view right;
    return place.line && IsValueLine(lines[*place.line], left, right) && ParseNumber(right, value);
}

bool WriteConfigValue(const std::wstring& key, const std::wstring& name, std::uint32_t value)
{
    const std::string narrowKey = NarrowPath(key);
    const std::string narrowName = NarrowPath(name);
    const std::wstring path = ConfigFile();
    if (path.empty() || IsUnwritable(narrowKey) || IsUnwritable(narrowName)) return false;
    const std::lock_guard<StaticLockC> guard(s_writeLock);
    if (!MakePrivateDirectory(UserConfigDirectory())) return false;
    LinesT lines;
    if (!ReadLines(path, lines) && FileExists(path)) return false;
    SetValue(lines, narrowKey, narrowName, value);
    return ReplaceLines(path, lines);
}

} // namespace BSS::HAL
