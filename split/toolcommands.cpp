// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/toolcommands.h"

#include <QStringList>

#include <algorithm>

namespace {

QString quotedTool(const QString &appFolder, QLatin1String tool)
{
    return quotedPath(appFolder + QLatin1Char('/') + tool);
}

QString quotedStavekit(const QString &appFolder)
{
    return quotedTool(appFolder, QLatin1String("stavekit"));
}

} // namespace

QString quotedPath(const QString &path)
{
    QString escaped = path;
    escaped.replace(QLatin1String("\""), QLatin1String("\"\"\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QString pageInfoFile(const QString &folder)
{
    return folder + QLatin1String("/fileinfo.txt");
}

QString pageCountCommand(const QString &appFolder, const QString &input, const QString &infoFile)
{
    return quotedStavekit(appFolder) + QLatin1Char(' ') + quotedPath(input) +
           QLatin1String(" -getinfo -outfile ") + quotedPath(infoFile);
}

QString layoutCommand(const QString &appFolder, const QString &temporaryFolder,
                      const QString &input)
{
    return previewCommand(appFolder, input, 0, temporaryFolder + QLatin1String("/split.xml"));
}

QString layoutFile(const QString &temporaryFolder, int page)
{
    return temporaryFolder + QString::asprintf("/split_pg_%04d.htm", page);
}

bool isLayoutFile(const QString &name)
{
    return name.startsWith(QLatin1String("split_pg_")) && name.endsWith(QLatin1String(".htm"));
}

QString previewCommand(const QString &appFolder, const QString &input, int page,
                       const QString &output)
{
    const QString range = page == 0 ? QString() : QStringLiteral(" -f %1 -l %1").arg(page);
    return quotedTool(appFolder, QLatin1String("quillrend")) + QLatin1String(" -htmlformat") +
           range + QLatin1Char(' ') + quotedPath(input) + QLatin1Char(' ') + quotedPath(output);
}

QString previewOutput(const QString &temporaryFolder)
{
    return temporaryFolder + QLatin1String("/text.xml");
}

QString previewLayoutFile(const QString &temporaryFolder)
{
    return temporaryFolder + QLatin1String("/text_pg_0001.htm");
}

QString previewImageFile(const QString &temporaryFolder)
{
    return temporaryFolder + QLatin1String("/text_pg_0001.png");
}

QString mergeCommand(const QString &appFolder, const QString &input, const QString &ranges,
                     const QString &output)
{
    return quotedStavekit(appFolder) + QLatin1Char(' ') + quotedPath(input) +
           QLatin1String(" -merge ") + ranges + QLatin1String(" -outfile ") + quotedPath(output);
}

QString pageCountDigits(const QString &info)
{
    const QLatin1String key("NumberOfPages: ");
    // A file without the key gives position -1, so the scan then starts inside the first line,
    // where no tool of ours writes digits.
    const qsizetype begin = std::min(info.indexOf(key) + key.size(), info.size());
    const auto isNoDigit = [](QChar c) { return c < QLatin1Char('0') || c > QLatin1Char('9'); };
    const auto end = std::find_if(info.begin() + begin, info.end(), isNoDigit);
    return info.mid(begin, (end - info.begin()) - begin);
}

QString pageInfoValue(const QString &info, QLatin1String key)
{
    const QString wanted = key + QLatin1String(": ");
    const QStringList lines = info.split(QLatin1Char('\n'));
    const auto line = std::find_if(lines.begin(), lines.end(), [&wanted](const QString &candidate) {
        return candidate.startsWith(wanted);
    });
    return line == lines.end() ? QString() : line->mid(wanted.size());
}
