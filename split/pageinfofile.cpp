// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/pageinfofile.h"

#include "split/toolcommands.h"
#include "split/workingfolder.h"

#include <QFile>

#include <utility>

namespace {

/// Whether nothing has the name any more. What cannot be removed, such as the file of another
/// user, would be taken for the next count's.
bool isRemoved(const QString &file)
{
    return QFile::remove(file) || !QFile::exists(file);
}

} // namespace

PageInfoFile::PageInfoFile(const QString &folder) : lock(folder + QLatin1String("/fileinfo.lock"))
{
    // A lock does not become invalid by age, only with the process that holds it.
    lock.setStaleLockTime(0);
    if (lock.tryLock())
        applicationFolder = folder;
}

QString PageInfoFile::prepare()
{
    if (!applicationFolder.isEmpty()) {
        const QString file = pageInfoFile(applicationFolder);
        if (isRemoved(file))
            return file;
        leaveApplicationFolder();
    }
    const QString folder = workingFolder();
    const QString file = pageInfoFile(folder);
    return !folder.isEmpty() && isRemoved(file) ? file : QString();
}

bool PageInfoFile::leaveApplicationFolder()
{
    lock.unlock();
    return !std::exchange(applicationFolder, QString()).isEmpty();
}
