// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. No shell stands between, which would quote in its own way and know no names outside its code page.
#include "Tools/RunQsb.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <algorithm>
#include <system_error>
#include <windows.h>

namespace Support {

namespace {

// As a program takes its command line apart: backslashes before a quote are doubled.
std::wstring Quoted(const std::wstring& argument)
{
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

class StreamFile
{
public:
    StreamFile(const std::string& path, DWORD access, DWORD creation)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        m_handle = CreateFileW(BSS::HAL::WidePath(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                               creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    ~StreamFile() { CloseHandle(m_handle); }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

} // namespace

int RunProgram(const std::vector<std::string>& command, const std::array<std::string, 3>& streams)
{
    std::wstring line;
    for (const std::string& argument : command)
        line += Quoted(BSS::HAL::WidePath(argument)) + L" ";
    const StreamFile in(streams[0], GENERIC_READ, OPEN_EXISTING);
    const StreamFile out(streams[1], GENERIC_WRITE, CREATE_ALWAYS);
    const StreamFile err(streams[2], GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = in.Get();
    start.hStdOutput = out.Get();
    start.hStdError = err.Get();
    PROCESS_INFORMATION process = {};
    // Wine now and then refuses a start with an internal error, and takes the same one the next time.
    BOOL bStarted = FALSE;
    for (int i = 0; i < 5 && !bStarted; ++i) {
        bStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
        if (!bStarted && GetLastError() != ERROR_INTERNAL_ERROR) break;
    }
    if (!bStarted) throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "CreateProcess");
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

std::string LinesOf(const std::string& output)
{
    std::string lines = output;
    lines.erase(std::remove(lines.begin(), lines.end(), '\r'), lines.end());
    return lines;
}

} // namespace Support
