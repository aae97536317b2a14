// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

/// Pages `first` to `last`, both included and counted from 1.
struct PageSpan
{
    int first = 0;
    int last = 0;
};

/// The spans of a document's ranges as decideSplit() writes them, "1-3 7".
[[nodiscard]] QList<PageSpan> pageSpans(const QString &ranges);

/// The pages of all spans together.
[[nodiscard]] int pageTotal(const QList<PageSpan> &spans);

/// Whether the documents take each of the pages 1 to `pageCount` exactly once.
[[nodiscard]] bool areAllPagesOnce(const QList<QString> &rangeList, int pageCount);

/// Page numbers in ascending order as ranges, "1-3 7".
[[nodiscard]] QString rangesOf(const QList<int> &pages);
