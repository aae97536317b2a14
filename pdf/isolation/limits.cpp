// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "pdf/isolation/limits.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <sys/resource.h>

namespace pdf {

namespace {

constexpr long long stackLimitBytes = 64LL << 20;

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
    // A library that lacks memory while it clears up ends here. Who waits for the process tells it.
    std::set_terminate(std::abort);
}

} // namespace pdf
