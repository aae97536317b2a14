// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/outputname.h"

#include "split/plaintext.h"
#include "split/splitdecision.h"

#include <QFile>
#include <QFileInfo>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <unistd.h>

namespace {

const QLatin1String suffix(".pdf");

/// The longest beginning of `text` that ends after a whole user-perceived character and takes at
/// most `bytes` bytes of UTF-8.
QString cutToBytes(const QString &text, qsizetype bytes)
{
    if (text.toUtf8().size() <= bytes)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype used = 0;
    qsizetype end = 0;
    for (qsizetype next = finder.toNextBoundary(); next > 0; next = finder.toNextBoundary()) {
        used += QStringView(text).mid(end, next - end).toUtf8().size();
        if (used > bytes)
            break;
        end = next;
    }
    return text.left(end);
}

} // namespace

QString fileNameText(const QString &text, qsizetype maxBytes)
{
    QString allowed = withoutControlCharacters(text);
    allowed.replace(QLatin1Char('/'), QLatin1Char('-'));
    return cutToBytes(allowed, maxBytes);
}

int longestFileName(const QString &folder)
{
    constexpr long longestOnLinux = 255;
    long longest = ::pathconf(QFile::encodeName(folder).constData(), _PC_NAME_MAX);
    if (longest <= 0)
        longest = ::pathconf(QFile::encodeName(QFileInfo(folder).path()).constData(), _PC_NAME_MAX);
    return static_cast<int>(longest > 0 ? std::min(longest, longestOnLinux) : longestOnLinux);
}

QString outputFileName(const OutputDocument &document, int methodIndex, int maxBytes)
{
    const QString before = QString::number(document.number) + QLatin1Char(' ');
    QString after;
    if (methodIndex != static_cast<int>(SplitMethod::GroupEqualTexts))
        after += QLatin1Char(' ') + document.ranges;
    if (document.copy > 1)
        after += QStringLiteral(" (%1)").arg(document.copy);
    after += suffix;
    const qsizetype room = maxBytes - before.size() - 1 - after.size();
    const QString base = cutToBytes(document.baseName, room);
    return before + fileNameText(document.text, room - base.toUtf8().size()) + QLatin1Char(' ') +
           base + after;
}

QString documentsFolder(const QString &outputFolder, const QString &baseName)
{
    return outputFolder + QLatin1Char('/') + baseName;
}

QString outputPath(const QString &outputFolder, const OutputDocument &document, int methodIndex)
{
    const QString folder = documentsFolder(outputFolder, document.baseName);
    return folder + QLatin1Char('/') +
           outputFileName(document, methodIndex, longestFileName(folder));
}

QString firstFreePath(const std::function<QString(int copy)> &pathOfCopy,
                      const std::function<bool(const QString &path)> &isFree)
{
    int copy = 1;
    QString path = pathOfCopy(copy);
    while (!isFree(path))
        path = pathOfCopy(++copy);
    return path;
}
