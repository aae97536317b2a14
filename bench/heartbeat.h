// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

/// A time in which an event loop handled no event: what somebody who clicks has to wait.
struct Gap
{
    double milliseconds = 0;       ///< without `waitedMilliseconds`
    double waitedMilliseconds = 0; ///< for a processor, while others had them
    QString after;                 ///< activity set before it
};

/// Processor time of the calling thread, which others on the machine do not change.
[[nodiscard]] double threadProcessorMilliseconds();

/// Watches the event loop of its thread from outside, by a timer that fires every millisecond.
class Heartbeat : public QObject
{
    Q_OBJECT

public:
    Heartbeat();

    void start();
    void stop();
    /// What the program is doing, for the description of gaps.
    void setActivity(const QString &text) { activity = text; }
    /// The five longest gaps, longest first.
    [[nodiscard]] const QList<Gap> &longest() const { return gaps; }

signals:
    void beat();

private:
    void noteBeat();
    [[nodiscard]] double waitedMilliseconds();

    QTimer timer;
    QElapsedTimer clock;
    QFile schedulerFigures;
    double lastWaited = 0;
    QString activity;
    QList<Gap> gaps;
};
