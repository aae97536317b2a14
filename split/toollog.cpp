// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/toollog.h"

#include <QDebug>
#include <QProcess>

void logComplaints(QProcess &tool)
{
    if (tool.error() == QProcess::FailedToStart)
        qWarning().noquote() << tool.program() + QLatin1String(": ") + tool.errorString();
    const QString complaint = QString::fromLocal8Bit(tool.readAllStandardError()).trimmed();
    if (!complaint.isEmpty())
        qWarning().noquote() << complaint;
}
