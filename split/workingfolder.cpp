// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/workingfolder.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <sys/stat.h>

QString workingFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    if (!folder.isEmpty() && QDir(folder).exists())
        return folder;
    // Not mkpath(): a folder that somebody else has made in the meantime is not ours.
    const QByteArray lost = qgetenv("TMPDIR");
    if (!lost.startsWith('/') || ::mkdir(lost.constData(), S_IRWXU) != 0)
        return {};
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation);
}
