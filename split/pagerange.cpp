// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/pagerange.h"

#include <QStringList>

#include <vector>

QList<PageSpan> pageSpans(const QString &ranges)
{
    QList<PageSpan> spans;
    for (const QString &range : ranges.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        spans.append({range.section(QLatin1Char('-'), 0, 0).toInt(),
                      range.section(QLatin1Char('-'), -1).toInt()});
    return spans;
}

int pageTotal(const QList<PageSpan> &spans)
{
    int total = 0;
    for (const PageSpan &span : spans)
        total += span.last - span.first + 1;
    return total;
}

bool areAllPagesOnce(const QList<QString> &rangeList, int pageCount)
{
    std::vector<bool> isTaken(static_cast<std::size_t>(pageCount));
    int taken = 0;
    for (const QString &ranges : rangeList) {
        for (const PageSpan &span : pageSpans(ranges)) {
            for (int page = span.first; page <= span.last; ++page) {
                if (page < 1 || page > pageCount || isTaken[static_cast<std::size_t>(page - 1)])
                    return false;
                isTaken[static_cast<std::size_t>(page - 1)] = true;
                ++taken;
            }
        }
    }
    return taken == pageCount;
}

QString rangesOf(const QList<int> &pages)
{
    QStringList ranges;
    for (qsizetype i = 0; i < pages.size();) {
        qsizetype last = i;
        while (last + 1 < pages.size() && pages[last + 1] == pages[last] + 1)
            ++last;
        ranges.append(i == last ? QString::number(pages[i])
                                : QStringLiteral("%1-%2").arg(pages[i]).arg(pages[last]));
        i = last + 1;
    }
    return ranges.join(QLatin1Char(' '));
}
