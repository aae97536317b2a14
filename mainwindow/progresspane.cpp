// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/progresspane.h"

#include "split/plaintext.h"

#include <QScrollBar>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>

ProgressPane::ProgressPane(QTextEdit *shownIn)
    : QObject(shownIn), view(shownIn), timer(new QTimer(this))
{
    timer->setSingleShot(true);
    timer->setInterval(50);
    connect(timer, &QTimer::timeout, this, &ProgressPane::showWaitingLines);
    // Every line would be kept a second time for an undo that a read-only view does not have.
    view->setUndoRedoEnabled(false);
}

void ProgressPane::append(const QString &line)
{
    waitingLines.append(withoutControlCharacters(line));
    showWaitingLines();
}

void ProgressPane::appendSoon(const QString &line)
{
    waitingLines.append(withoutControlCharacters(line));
    if (!timer->isActive())
        timer->start();
}

void ProgressPane::showWaitingLines()
{
    timer->stop();
    const QString lines = waitingLines.join(QLatin1Char('\n'));
    waitingLines.clear();
    const bool isFirst = view->document()->isEmpty();
    QScrollBar *bar = view->verticalScrollBar();
    const bool isAtEnd = bar->value() == bar->maximum();
    QTextCursor end(view->document());
    end.movePosition(QTextCursor::End);
    end.insertText(isFirst ? lines : QLatin1Char('\n') + lines);
    if (isAtEnd)
        bar->setValue(bar->maximum());
}
