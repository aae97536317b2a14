// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/toolprocesses.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>

#include <utility>

QString complaintOf(QProcess &tool)
{
    if (tool.error() == QProcess::FailedToStart)
        return tool.program() + QLatin1String(": ") + tool.errorString();
    const QString said = QString::fromLocal8Bit(tool.readAllStandardError()).trimmed();
    if (said.isEmpty() && tool.exitStatus() == QProcess::CrashExit)
        return QFileInfo(tool.program()).fileName() + QLatin1String(": was ended from outside");
    return said;
}

ToolProcesses::ToolProcesses(QObject *parent) : QObject(parent)
{
}

ToolProcesses::~ToolProcesses()
{
    endAll();
}

void ToolProcesses::start(const QString &command,
                          const std::function<void(const QString &complaint)> &ended)
{
    auto *tool = new QProcess(this);
    running.append(tool);
    const auto goOn = [this, tool, ended] {
        running.removeOne(tool);
        tool->deleteLater();
        ended(complaintOf(*tool));
    };
    connect(tool, &QProcess::finished, this, goOn);
    // A tool that could not be started never finishes. Queued, so that a missing tool does not
    // make the steps of a long batch call each other deeper and deeper.
    connect(
        tool, &QProcess::errorOccurred, this,
        [goOn](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                goOn();
        },
        Qt::QueuedConnection);
    tool->startCommand(command, QIODevice::ReadWrite);
}

void ToolProcesses::endAll()
{
    constexpr int patienceMs = 1000;
    const QList<QProcess *> tools = std::exchange(running, {});
    for (QProcess *tool : tools) {
        tool->disconnect(this);
        tool->terminate();
    }
    const QDeadlineTimer deadline(patienceMs);
    for (QProcess *tool : tools) {
        tool->waitForFinished(static_cast<int>(deadline.remainingTime()));
        if (tool->state() != QProcess::NotRunning) {
            tool->kill();
            tool->waitForFinished(patienceMs);
        }
        delete tool;
    }
}
