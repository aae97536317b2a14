// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/workingfolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Whether nobody but this user and the system's owner can put files of theirs in the place of the
/// folder's. Where a private folder could not be made it is the system's, which belongs to root.
bool isTrusted(const QString &folder)
{
    const QFileInfo status(folder);
    return status.isDir() && (status.ownerId() == ::geteuid() || status.ownerId() == 0);
}

} // namespace

QString workingFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    if (!folder.isEmpty() && isTrusted(folder))
        return folder;
    // Not mkpath(): a folder that somebody else has made in the meantime is not ours.
    const QByteArray lost = qgetenv("TMPDIR");
    if (!lost.startsWith('/') || ::mkdir(lost.constData(), S_IRWXU) != 0)
        return {};
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation);
}
