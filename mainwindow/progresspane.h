// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QStringList>

class QTextEdit;
class QTimer;

/// Adds lines to the end of a text view. The view follows its end unless somebody has scrolled up
/// to read. Lines are plain text: a path with angle brackets is no HTML, and one with a line end is
/// still one line.
class ProgressPane : public QObject
{
    Q_OBJECT

public:
    /// Becomes a child of `view`.
    explicit ProgressPane(QTextEdit *view);

    /// Shows `line` at once.
    void append(const QString &line);

    /// Shows `line` within 50 ms, or with the next line that is shown at once. For the lines of
    /// single pages: laying out and painting the view for each would take longer than the page.
    void appendSoon(const QString &line);

private:
    void showWaitingLines();

    QTextEdit *view;
    QTimer *timer;
    QStringList waitingLines;
};
