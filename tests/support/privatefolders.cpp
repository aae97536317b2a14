// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/privatefolders.h"

#include <QDir>

PrivateFolders::PrivateFolders() : startFolder(QDir::currentPath())
{
    if (!root.isValid())
        qFatal("No private folder for the tests: %s", qPrintable(root.errorString()));
    const QDir folder(root.path());
    const auto assign = [&folder](const char *variable, const QString &name) {
        folder.mkpath(name);
        qputenv(variable, QFile::encodeName(folder.filePath(name)));
    };
    assign("HOME", QStringLiteral("home"));
    assign("XDG_DATA_HOME", QStringLiteral("data"));
    assign("XDG_CONFIG_HOME", QStringLiteral("config"));
    assign("XDG_CACHE_HOME", QStringLiteral("cache"));
    assign("TMPDIR", QStringLiteral("tmp"));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    folder.mkpath(QStringLiteral("work"));
    QDir::setCurrent(folder.filePath(QStringLiteral("work")));
}

PrivateFolders::~PrivateFolders()
{
    QDir::setCurrent(startFolder);
}
