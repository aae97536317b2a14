// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The one settings file, in QSettings::IniFormat. The bare name resolves against the working
/// directory, so each folder that Sendrivo is started in keeps rules and choices of its own.
inline QString settingsFileName()
{
    return QStringLiteral("setting.ini");
}

/// Why the system does not let `file`, or a new file beside it, be written; empty when it does. A
/// settings file is written as a new file that takes its place.
[[nodiscard]] QString writeObstacle(const QString &file);
