// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/privatetemporaryfolder.h"

#include <QDir>
#include <QFile>

PrivateTemporaryFolder::PrivateTemporaryFolder()
    : earlierFolder(qgetenv("TMPDIR")), folder(QDir::tempPath() + QLatin1String("/sendrivo-XXXXXX"))
{
    if (folder.isValid())
        qputenv("TMPDIR", QFile::encodeName(folder.path()));
    else
        qWarning("No private temporary folder: %s", qUtf8Printable(folder.errorString()));
}

PrivateTemporaryFolder::~PrivateTemporaryFolder()
{
    if (earlierFolder.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", earlierFolder);
}
