// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/privatetemporaryfolder.h"

#include "system/claimedfolder.h"

#include <QDir>
#include <QFile>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

constexpr FolderKind windowFolder = {"sendrivo-", ".sendrivo-window"};

/// A cleaner may have removed the folder, and the window made it again: what is there now goes.
bool removeFolder(const QByteArray &path)
{
    const FolderDescriptor present(AT_FDCWD, path.constData());
    return !present.isOpen() || removeClaimedFolder(present, path.toStdString(), windowFolder);
}

} // namespace

PrivateTemporaryFolder::PrivateTemporaryFolder() : earlierFolder(qgetenv("TMPDIR"))
{
    const QByteArray parent = QFile::encodeName(QDir::tempPath());
    removeAbandonedFolders(
        parent.toStdString(), windowFolder,
        [](const FolderDescriptor &, const std::string &, bool isLockFree) { return isLockFree; });
    QByteArray name = parent + '/' + windowFolder.namePrefix + "XXXXXX";
    if (!::mkdtemp(name.data())) { // for its owner only
        qErrnoWarning("No private temporary folder in %s", parent.constData());
        return;
    }
    path = name;
    folder = claimFolder(name.toStdString(), windowFolder);
    qputenv("TMPDIR", path);
}

PrivateTemporaryFolder::~PrivateTemporaryFolder()
{
    if (path.isEmpty())
        return;
    remove();
    if (earlierFolder.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", earlierFolder);
}

void PrivateTemporaryFolder::remove() const
{
    if (path.isEmpty())
        return;
    // Workers of a tool that has just been ended may write for another moment.
    constexpr int attempts = 20;
    constexpr std::chrono::milliseconds pause(10);
    for (int i = 0; i < attempts && !removeFolder(path); ++i)
        std::this_thread::sleep_for(pause);
}
