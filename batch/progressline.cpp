// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "batch/progressline.h"

#include <cmath>
#include <cstdio>
#include <unistd.h>

ProgressLine::ProgressLine(bool isWanted) : isShown(isWanted && ::isatty(STDERR_FILENO) == 1)
{
    sinceStart.start();
    sinceShown.start();
}

void ProgressLine::show(const RunState &state)
{
    constexpr int pauseMs = 200;
    if (!isShown || sinceShown.elapsed() < pauseMs)
        return;
    sinceShown.restart();
    constexpr double milliseconds = 1e3;
    const QString text =
        progressText(state, static_cast<double>(sinceStart.elapsed()) / milliseconds);
    std::fprintf(stderr, "\r\033[K%s", qPrintable(text));
    std::fflush(stderr);
    isOnScreen = true;
}

void ProgressLine::clear()
{
    if (isOnScreen)
        std::fputs("\r\033[K", stderr);
    isOnScreen = false;
}

QString progressText(const RunState &state, double seconds)
{
    const double rate = seconds > 0 ? static_cast<double>(state.pagesDone) / seconds : 0;
    QString text = QStringLiteral("%1 of %2 files, %3 pages, %4 pages/s")
                       .arg(state.filesDone)
                       .arg(state.files)
                       .arg(state.pagesDone)
                       .arg(std::lround(rate));
    if (state.share > 0) {
        const long left = std::lround(seconds * (1 - state.share) / state.share);
        constexpr long minute = 60;
        text += QStringLiteral(", %1:%2 left")
                    .arg(left / minute)
                    .arg(left % minute, 2, 10, QLatin1Char('0'));
    }
    return text;
}
