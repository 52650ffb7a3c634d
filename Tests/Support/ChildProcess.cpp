// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header.
#include "Support/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    m_output = ends[0];
    if (m_pid < 0) throw std::runtime_error("no child");
}

ChildProcess::~ChildProcess()
{
    if (m_pid > 0) {
        Kill();
        static_cast<void>(Wait());
    }
    ::close(m_output);
}

std::string ChildProcess::ReadLine()
{
    std::string line;
    char character = '\0';
    while (::read(m_output, &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

void ChildProcess::Kill()
{
    ::kill(m_pid, SIGKILL);
}

int ChildProcess::Wait()
{
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace Support
