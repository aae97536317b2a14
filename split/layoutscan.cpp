// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/layoutscan.h"

#include <algorithm>

QStringList layoutFileLines(const QString &layout)
{
    return layout.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

int styleValue(QStringView key, QStringView line)
{
    const qsizetype found = line.indexOf(key);
    if (found < 0)
        return 0;
    const qsizetype begin = std::min(found + key.size() + 1, line.size());
    const auto endsValue = [](QChar c) { return c == QLatin1Char(';') || c == QLatin1Char('"'); };
    const auto end = std::find_if(line.begin() + begin, line.end(), endsValue);
    bool isNumber = false;
    const int value = line.mid(begin, (end - line.begin()) - begin).toInt(&isNumber, /*base=*/10);
    return isNumber && value > 0 ? value : 0;
}

QString fragmentText(QStringView line)
{
    const qsizetype end = line.indexOf(QLatin1String("</span>"));
    if (end < 0)
        return {};
    // Without any ">" the text starts at the second character: position 0 is never looked at.
    const qsizetype bracket = end > 0 ? line.lastIndexOf(QLatin1Char('>'), end - 1) : -1;
    const qsizetype begin = std::max<qsizetype>(bracket, 0) + 1;
    return begin < end ? line.mid(begin, end - begin).toString() : QString();
}

Subtext parseFragment(QStringView line)
{
    Subtext fragment;
    fragment.left = styleValue(u"left", line);
    fragment.top = styleValue(u"top", line);
    fragment.width = styleValue(u"width", line);
    fragment.height = styleValue(u"height", line);
    fragment.text = fragmentText(line);
    return fragment;
}

QString textAtPosition(const QStringList &lines, int left, int top)
{
    const auto end = lines.cbegin() + std::min<qsizetype>(lines.size(), maxScannedLines);
    const auto match = std::find_if(lines.cbegin(), end, [left, top](const QString &line) {
        return styleValue(u"left", line) == left && styleValue(u"top", line) == top;
    });
    return match != end ? fragmentText(*match) : noText();
}
