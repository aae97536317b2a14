// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "mainwindow/filesize.h"

QString fileSizeText(qint64 bytes)
{
    const auto size = static_cast<qint32>(bytes);
    if (size <= 0)
        return {};
    if (size <= 1048576)
        return QString::asprintf("%14.3f KB", size / 1000.0);
    return QString::asprintf("%14.3f MB", size / 1000000.0);
}
