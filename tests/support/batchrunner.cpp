// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/batchrunner.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <unistd.h>

namespace {

const QString program = QStringLiteral("sendrivo-batch");

}

ToolResult batch(const QStringList &arguments)
{
    return runTool(program, arguments);
}

std::unique_ptr<QProcess> startBatch(const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setChildProcessModifier([] { ::setpgid(0, 0); });
    process->start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, arguments);
    return process;
}

QList<QJsonObject> jsonLines(const QByteArray &bytes)
{
    QList<QJsonObject> lines;
    for (const QByteArray &line : bytes.split('\n')) {
        if (!line.isEmpty())
            lines.append(QJsonDocument::fromJson(line).object());
    }
    return lines;
}
