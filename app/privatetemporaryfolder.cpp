// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/privatetemporaryfolder.h"

#include "app/claimedfolder.h"

#include <QDir>
#include <QFile>

#include <cstdlib>

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
    if (!path.isEmpty())
        removeClaimedFolder(folder, path);
}
