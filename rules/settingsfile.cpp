// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "rules/settingsfile.h"

#include <QFile>
#include <QTemporaryFile>

QString writeObstacle(const QString &file)
{
    QFile present(file);
    if (present.exists() && !present.open(QIODevice::Append))
        return present.errorString();
    QTemporaryFile beside(file);
    constexpr qsizetype someBytes = 64 * 1024; // on a full disk an empty file is still possible
    if (!beside.open() || beside.write(QByteArray(someBytes, ' ')) < someBytes || !beside.flush())
        return beside.errorString();
    return {};
}
