// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/stopsignals.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace {

// A signal handler may do next to nothing: it writes the number here.
std::array<int, 2> wakeUpPipe = {-1, -1};

void wakeUp(int number)
{
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(wakeUpPipe[1], &byte, 1);
}

void handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    ::sigaction(number, &action, nullptr);
}

} // namespace

StopSignals::StopSignals()
{
    if (::pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error(std::strerror(errno));
    for (const int number : numbers) {
        // What was ignored from the start, as under nohup, stays ignored.
        struct sigaction before = {};
        ::sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            handle(number, wakeUp);
    }
}

StopSignals::~StopSignals()
{
    for (const int number : numbers)
        handle(number, SIG_DFL);
    for (int &end : wakeUpPipe)
        ::close(std::exchange(end, -1));
}

int StopSignals::descriptor() const
{
    return wakeUpPipe[0];
}

int StopSignals::take()
{
    char byte = 0;
    return ::read(wakeUpPipe[0], &byte, 1) == 1 ? byte : 0;
}

void StopSignals::handOver()
{
    for (const int number : numbers)
        handle(number, SIG_IGN);
    handle(forInputs, SIG_DFL);
}
