// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The ScanReader developers
//
// See the header. The process is its number.
#include "Support/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

static_assert(ChildProcess::KILLED == -SIGKILL);

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    m_process = ::fork();
    if (m_process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    m_output = ends[0];
    if (m_process < 0) throw std::runtime_error("no child");
}

ChildProcess::~ChildProcess()
{
    if (m_process != NONE) {
        Kill();
        static_cast<void>(Wait());
    }
    ::close(static_cast<int>(m_output));
}

std::string ChildProcess::ReadLine()
{
    std::string line;
    char character = '\0';
    while (::read(static_cast<int>(m_output), &character, 1) == 1 && character != '\n')
        line += character;
    return line;
}

void ChildProcess::Kill()
{
    ::kill(static_cast<pid_t>(m_process), SIGKILL);
}

int ChildProcess::Wait()
{
    int status = 0;
    while (::waitpid(static_cast<pid_t>(m_process), &status, 0) < 0 && errno == EINTR) {
    }
    m_process = NONE;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace Support
