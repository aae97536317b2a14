// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "bench/heartbeat.h"

#include <algorithm>
#include <ctime>

double threadProcessorMilliseconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Heartbeat::Heartbeat() : schedulerFigures(QStringLiteral("/proc/thread-self/schedstat"))
{
    if (!schedulerFigures.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        qWarning("How long the thread waits for a processor is not known.");
    timer.setTimerType(Qt::PreciseTimer);
    timer.setInterval(1);
    connect(&timer, &QTimer::timeout, this, &Heartbeat::noteBeat);
}

void Heartbeat::start()
{
    clock.start();
    lastWaited = waitedMilliseconds();
    timer.start();
}

void Heartbeat::stop()
{
    noteBeat();
    timer.stop();
}

/// The second figure: nanoseconds in which the thread could have run.
double Heartbeat::waitedMilliseconds()
{
    schedulerFigures.seek(0);
    return schedulerFigures.readAll().split(' ').value(1).toDouble() / 1e6;
}

void Heartbeat::noteBeat()
{
    const double waited = waitedMilliseconds() - lastWaited;
    const Gap gap = {static_cast<double>(clock.nsecsElapsed()) / 1e6 - waited, waited, activity};
    const auto place = std::find_if(gaps.cbegin(), gaps.cend(), [&gap](const Gap &other) {
        return other.milliseconds < gap.milliseconds;
    });
    gaps.insert(place - gaps.cbegin(), gap);
    if (gaps.size() > 5)
        gaps.removeLast();
    emit beat();
    clock.start();
    lastWaited = waitedMilliseconds();
}
