// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/optionvalues.h"

QString flagText(bool on)
{
    return on ? QStringLiteral("Ok") : QStringLiteral("No");
}

bool flagValue(const QString &stored, bool fallback)
{
    return stored == flagText(!fallback) ? !fallback : fallback;
}

int indexValue(const QString &stored, int last, int fallback)
{
    const int index = stored.toInt();
    return index < 0 || index > last ? fallback : index;
}

QString resolutionValue(const QString &stored, const QString &fallback)
{
    QString resolution = stored;
    resolution.remove(QLatin1Char(' '));
    return resolution.isEmpty() ? fallback : resolution;
}

int presetValue(const QString &stored)
{
    return stored == QLatin1String("1") ? 1 : 0;
}

QString presetText(int index)
{
    return index == 0 ? QStringLiteral("0") : QStringLiteral("1");
}
