// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/limits.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/time.h>

namespace pdf {

namespace {

constexpr long long stackLimitBytes = 64LL << 20;

EmergencyExit emergencyExit = nullptr;

void limit(__rlimit_resource_t resource, rlim_t value)
{
    rlimit current = {};
    if (::getrlimit(resource, &current) != 0)
        return;
    if (current.rlim_cur == RLIM_INFINITY || current.rlim_cur > value) {
        current.rlim_cur = value;
        ::setrlimit(resource, &current);
    }
}

void onSignal(int number)
{
    emergencyExit(number == SIGBUS ? "became shorter while it was read"
                                   : "takes too long to read, given up");
}

void handle(int number)
{
    struct sigaction action = {};
    action.sa_handler = onSignal;
    ::sigaction(number, &action, nullptr);
}

} // namespace

void limitResources()
{
    // The sanitizers' shadow memory counts as data and is far larger.
#if !defined(__SANITIZE_ADDRESS__)
    limit(RLIMIT_DATA, static_cast<rlim_t>(memoryLimitBytes));
#endif
    // Where the stack is unlimited, endless recursion would take all memory before it fails.
    limit(RLIMIT_STACK, static_cast<rlim_t>(stackLimitBytes));
    limit(RLIMIT_CORE, 0);
    std::signal(SIGXFSZ, SIG_IGN);
}

void installEmergencyExit(EmergencyExit function)
{
    emergencyExit = function;
    handle(SIGBUS);
    handle(SIGPROF);
    itimerval timer = {};
    timer.it_value.tv_sec = documentTimeLimitSeconds;
    ::setitimer(ITIMER_PROF, &timer, nullptr);
}

} // namespace pdf
