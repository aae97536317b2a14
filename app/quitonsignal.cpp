// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/quitonsignal.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

// A signal handler may do next to nothing: it writes a byte here, and the event loop wakes up.
std::array<int, 2> wakeUpPipe = {-1, -1};

constexpr std::array<int, 3> quitSignals = {SIGHUP, SIGINT, SIGTERM};

void wakeUp(int)
{
    const char byte = 0;
    // Nothing can be done about a full pipe, and then the loop is awake anyway.
    [[maybe_unused]] const ssize_t written = write(wakeUpPipe[1], &byte, 1);
}

} // namespace

QuitOnSignal::QuitOnSignal()
{
    if (pipe2(wakeUpPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    for (const int number : quitSignals)
        std::signal(number, wakeUp);
}

void QuitOnSignal::connectToApplication()
{
    if (wakeUpPipe[0] < 0)
        return;
    auto *notifier = new QSocketNotifier(wakeUpPipe[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
}

QuitOnSignal::~QuitOnSignal()
{
    if (wakeUpPipe[0] < 0)
        return;
    for (const int number : quitSignals)
        std::signal(number, SIG_DFL);
    for (int &end : wakeUpPipe)
        close(std::exchange(end, -1));
}
