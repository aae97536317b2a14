// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/privatetemporaryfolder.h"

#include "app/claimedfolder.h"

#include <QDir>
#include <QFile>

#include <chrono>
#include <cstdlib>
#include <thread>

PrivateTemporaryFolder::PrivateTemporaryFolder() : earlierFolder(qgetenv("TMPDIR"))
{
    const QByteArray parent = QFile::encodeName(QDir::tempPath());
    removeAbandonedFolders(parent, "sendrivo-");
    QByteArray name = parent + "/sendrivo-XXXXXX";
    if (!::mkdtemp(name.data())) { // for its owner only
        qErrnoWarning("No private temporary folder in %s", parent.constData());
        return;
    }
    path = name;
    folder = claimFolder(path);
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
    for (int i = 0; i < attempts && !removeClaimedFolder(folder, path); ++i)
        std::this_thread::sleep_for(pause);
}
