// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/messagehandler.h"

#include "app/logfile.h"

#include <QFile>
#include <QTextStream>

#include <cstdlib>

void customMessageHandler(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    QString line;
    switch (type) {
    case QtDebugMsg:
        line = QStringLiteral("Debug: %1").arg(message);
        break;
    case QtWarningMsg:
        line = QStringLiteral("Warning: %1").arg(message);
        break;
    case QtCriticalMsg:
        line = QStringLiteral("Critical: %1").arg(message);
        break;
    case QtFatalMsg:
        std::abort();
    case QtInfoMsg:
        break;
    }
    QFile file(logFile());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append, QFile::ReadOwner | QFile::WriteOwner))
        return;
    QTextStream stream(&file);
    stream.setEncoding(QStringConverter::System);
    stream << line << Qt::endl;
}
