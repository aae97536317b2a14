// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/plugins.h"

#include <QCoreApplication>
#include <QDir>

void usePlugins()
{
    QDir folder(QCoreApplication::applicationDirPath());
    folder.cdUp();
    folder.cd(QStringLiteral("Plugins"));
    QCoreApplication::setLibraryPaths({folder.absolutePath()});
}
