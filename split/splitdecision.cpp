// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "split/splitdecision.h"

#include "split/layoutscan.h"

#include <QHash>

namespace {

/// The pages from index `first` up to and including index `last`, both 0-based, as a range text.
QString rangeText(qsizetype first, qsizetype last)
{
    return first == last ? QString::number(first + 1)
                         : QStringLiteral("%1-%2").arg(first + 1).arg(last + 1);
}

template <typename BeginsDocument>
SplitDecision splitWhere(const QStringList &pageTexts, BeginsDocument beginsDocument)
{
    SplitDecision decision;
    qsizetype first = 0;
    for (qsizetype page = 1; page <= pageTexts.size(); ++page) {
        if (page < pageTexts.size() && !beginsDocument(pageTexts[page], pageTexts[first]))
            continue;
        decision.rangeList.append(rangeText(first, page - 1));
        decision.textList.append(pageTexts[first]);
        first = page;
    }
    return decision;
}

SplitDecision splitByChange(const QStringList &pageTexts)
{
    return splitWhere(pageTexts, [](const QString &text, const QString &documentText) {
        return text != noText() && text != documentText;
    });
}

SplitDecision splitByPresence(const QStringList &pageTexts)
{
    return splitWhere(pageTexts,
                      [](const QString &text, const QString &) { return text != noText(); });
}

/// Joins the ranges of documents with equal texts, in the order of each text's first document.
SplitDecision groupEqualTexts(const SplitDecision &documents)
{
    SplitDecision groups;
    QHash<QString, qsizetype> groupOfText;
    QList<QStringList> rangesOfGroup;
    for (qsizetype k = 0; k < documents.textList.size(); ++k) {
        const QString &text = documents.textList[k];
        auto group = groupOfText.constFind(text);
        if (group == groupOfText.constEnd()) {
            group = groupOfText.insert(text, rangesOfGroup.size());
            rangesOfGroup.append(QStringList());
            groups.textList.append(text);
        }
        rangesOfGroup[*group].append(documents.rangeList[k]);
    }
    for (const QStringList &ranges : std::as_const(rangesOfGroup))
        groups.rangeList.append(ranges.join(QLatin1Char(' ')));
    return groups;
}

} // namespace

SplitDecision decideSplit(const QStringList &pageTexts, int methodIndex)
{
    switch (static_cast<SplitMethod>(methodIndex)) {
    case SplitMethod::TextChanges:
        return splitByChange(pageTexts);
    case SplitMethod::TextPresent:
        return splitByPresence(pageTexts);
    case SplitMethod::GroupEqualTexts:
        return groupEqualTexts(splitByChange(pageTexts));
    }
    return {};
}
