// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/filetrouble.h"

#include "split/plaintext.h"

#include <QDebug>

void FileTrouble::clear()
{
    *this = FileTrouble();
}

void FileTrouble::note(const QString &complaint)
{
    if (complaint.isEmpty())
        return;
    qWarning().noquote() << complaint;
    if (!isFatal)
        last = complaint;
}

void FileTrouble::fail(const QString &complaint)
{
    isFatal = false;
    note(complaint);
    isFatal = true;
}

QString complaintToolTip(const QString &complaint, const QString &logFile)
{
    const QString line = complaint.section(QLatin1Char('\n'), -1);
    const QString text = withoutControlCharacters(line) + QLatin1String("\nLog: ") + logFile;
    return QLatin1String("<p style=\"white-space:pre-wrap\">") + text.toHtmlEscaped() +
           QLatin1String("</p>");
}
