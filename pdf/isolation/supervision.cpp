// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/supervision.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pdf {

namespace {

/// Workers end with the process that started them, a moment later.
void waitForOrphans()
{
    while (::wait(nullptr) > 0 || errno == EINTR) {
    }
}

/// Ends the process by the signal even where the program that started it had it held back.
void letEnd(int signal)
{
    std::signal(signal, SIG_DFL);
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, signal);
    ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

} // namespace

std::string causeOfEnd(int signal)
{
    switch (signal) {
    case SIGBUS:
        return "became shorter while it was read";
    case SIGPROF:
        return "takes too long to read, given up";
    case SIGKILL: // what a system short of memory sends
    case SIGTERM:
    case SIGINT:
        return "was stopped from outside while it was read";
    default:
        return "crashes the reader";
    }
}

void limitProcessorTime(int seconds)
{
    letEnd(SIGPROF);
    letEnd(SIGBUS);
    itimerval timer = {};
    timer.it_value.tv_sec = seconds;
    ::setitimer(ITIMER_PROF, &timer, nullptr);
}

void endWithParent(pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(0);
}

pid_t forkBound()
{
    const pid_t parent = ::getpid();
    // Where the program that started this one had it ignored, the system would not keep how a child
    // ended, and no wait would ever be told.
    std::signal(SIGCHLD, SIG_DFL);
    const pid_t child = ::fork();
    if (child == 0)
        endWithParent(parent);
    return child;
}

NoProcess::NoProcess(int error)
    : Error(ExitCode::InputUnreadable,
            std::string("no process can be started: ") + std::strerror(error))
{
}

std::optional<int> endOf(pid_t process, int options)
{
    int status = 0;
    pid_t ended = -1;
    do {
        ended = ::waitpid(process, &status, options);
    } while (ended < 0 && errno == EINTR);
    if (ended == 0)
        return std::nullopt;
    return ended == process ? status : SIGKILL;
}

void continueInChild(const std::function<void(const std::string &cause)> &failed,
                     int processorSeconds)
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t child = forkBound();
    if (child < 0)
        throw NoProcess(errno);
    if (child == 0) {
        limitProcessorTime(processorSeconds);
        return;
    }
    const int status = endOf(child).value_or(SIGKILL);
    if (WIFEXITED(status))
        ::_exit(WEXITSTATUS(status));
    waitForOrphans();
    // Nobody reads the output any more, which is no matter of the input.
    if (WTERMSIG(status) == SIGPIPE)
        ::raise(SIGPIPE);
    failed(causeOfEnd(WTERMSIG(status)));
    ::_exit(static_cast<int>(ExitCode::InputUnreadable));
}

} // namespace pdf
