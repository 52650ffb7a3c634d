// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. Process and output are the system's handles.
#include "Support/ChildProcess.h"

#include "Bss/Bss_Hal/BSS_HAL_Path.h"

#include <stdexcept>
#include <windows.h>

namespace Support {

namespace {

HANDLE Native(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// No argument of these tests holds a quote or ends in a backslash.
std::wstring CommandLine(const std::vector<std::string>& command)
{
    std::wstring line;
    for (const std::string& argument : command)
        line += L'"' + BSS::HAL::WidePath(argument) + L"\" ";
    return line;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (!CreatePipe(&reading, &writing, nullptr, 0)) throw std::runtime_error("no pipe");
    SetHandleInformation(writing, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = INVALID_HANDLE_VALUE;
    start.hStdOutput = writing;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring line = CommandLine(command);
    PROCESS_INFORMATION process = {};
    // Wine now and then refuses a start with an internal error, and takes the same one the next time.
    BOOL bStarted = FALSE;
    for (int i = 0; i < 5 && !bStarted; ++i) {
        bStarted = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                                  &process);
        if (!bStarted && GetLastError() != ERROR_INTERNAL_ERROR) break;
    }
    CloseHandle(writing);
    m_output = reinterpret_cast<std::intptr_t>(reading);
    if (!bStarted) {
        CloseHandle(reading);
        throw std::runtime_error("no child");
    }
    CloseHandle(process.hThread);
    m_process = reinterpret_cast<std::intptr_t>(process.hProcess);
}

ChildProcess::~ChildProcess()
{
    if (m_process != NONE) {
        Kill();
        static_cast<void>(Wait());
    }
    CloseHandle(Native(m_output));
}

std::string ChildProcess::ReadLine()
{
    std::string line;
    char character = '\0';
    DWORD count = 0;
    while (ReadFile(Native(m_output), &character, 1, &count, nullptr) && count == 1 && character != '\n') {
        if (character != '\r') line += character;
    }
    return line;
}

void ChildProcess::Kill()
{
    TerminateProcess(Native(m_process), static_cast<UINT>(KILLED));
}

int ChildProcess::Wait()
{
    DWORD code = 0;
    WaitForSingleObject(Native(m_process), INFINITE);
    GetExitCodeProcess(Native(m_process), &code);
    CloseHandle(Native(m_process));
    m_process = NONE;
    return static_cast<int>(code);
}

} // namespace Support
