// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/scheduler.h"

#include <QElapsedTimer>
#include <QString>

/// The line of progress on standard error: files, pages per second, remaining time. It is shown
/// only on a terminal, and only when wanted.
class ProgressLine
{
public:
    explicit ProgressLine(bool isWanted);

    /// Shows the state, at most a few times a second.
    void show(const RunState &state);
    /// Takes the line away, before something else is printed and at the end.
    void clear();

private:
    bool isShown = false;
    bool isOnScreen = false;
    QElapsedTimer sinceStart;
    QElapsedTimer sinceShown;
};

/// The text of the line after that many seconds.
[[nodiscard]] QString progressText(const RunState &state, double seconds);
