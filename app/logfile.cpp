// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/logfile.h"

#include <QStandardPaths>

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

QString logFile()
{
    return dataFolder() + QLatin1String("/splitterlog.txt");
}
