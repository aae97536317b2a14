// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "options/markfile.h"

#include <QFile>
#include <QTextStream>

QString markText(const DocumentInformation &information)
{
    // One arg() per field: the form with several arguments would leave placeholders inside the
    // fields alone, and the marks of existing users would change.
    return QStringLiteral("[ /Title (%1)\n /Author (%2) \n /Subject (%3) \n /Keywords (%4) \n"
                          " /Creator (%5) \n /Producer (%6) \n /DOCINFO pdfmark")
        .arg(information.title)
        .arg(information.author)
        .arg(information.subject)
        .arg(information.keywords)
        .arg(information.creator)
        .arg(information.producer);
}

void writeMarkFile(const DocumentInformation &information)
{
    QFile file(QStringLiteral("pdfinfo.txt"));
    if (!file.open(QIODevice::WriteOnly))
        return;
    QTextStream stream(&file);
    stream.setEncoding(QStringConverter::System);
    stream << markText(information);
}
