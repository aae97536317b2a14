// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QObject>

#include <functional>

class QProcess;

/// What a tool that has ended, or could not be started, had to say: its standard error without the
/// line end, or why it did not start. A tool that ended by a signal without a word is said to have
/// crashed. Empty when there is nothing to say.
[[nodiscard]] QString complaintOf(QProcess &tool);

/// The tools that a window has started and that have not ended yet.
///
/// They must be ended before what their ends are reported to: a QProcess that is deleted while its
/// program runs kills it, waits for it and reports the end, by then to an object in pieces.
class ToolProcesses : public QObject
{
    Q_OBJECT

public:
    explicit ToolProcesses(QObject *parent = nullptr);
    ~ToolProcesses() override;
    Q_DISABLE_COPY_MOVE(ToolProcesses)

    /// Starts the tool of a command line. When it has ended, or could not be started, `ended` is
    /// called from the event loop with its complaint.
    void start(const QString &command, const std::function<void(const QString &complaint)> &ended);

    /// Ends all tools and waits until they are gone: asks them to, and kills those that are still
    /// there after a second. Nothing is called for them any more.
    void endAll();

private:
    QList<QProcess *> running;
};
