// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/supervision.h"

#include "pdf/error.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pdf {

namespace {

/// Makes the end of this process the child's own, too, and gives it its time limit.
void beSupervised(pid_t parent, int processorSeconds)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(0);
    limitProcessorTime(processorSeconds);
}

int waitFor(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

/// Workers end with the process that started them, a moment later.
void waitForOrphans()
{
    while (::wait(nullptr) > 0 || errno == EINTR) {
    }
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
    // Both end the process unless the caller's own caller had them ignored.
    std::signal(SIGPROF, SIG_DFL);
    std::signal(SIGBUS, SIG_DFL);
    itimerval timer = {};
    timer.it_value.tv_sec = seconds;
    ::setitimer(ITIMER_PROF, &timer, nullptr);
}

void continueInChild(const std::function<void(const std::string &cause)> &failed,
                     int processorSeconds)
{
    const pid_t parent = ::getpid();
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t child = ::fork();
    if (child < 0)
        throw Error(ExitCode::InputUnreadable,
                    std::string("no process can be started: ") + std::strerror(errno));
    if (child == 0) {
        beSupervised(parent, processorSeconds);
        return;
    }
    const int status = waitFor(child);
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
