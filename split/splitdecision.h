// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

/// How the texts at the rule's position decide where new documents begin. The values are the
/// indexes of the method combo box.
enum class SplitMethod {
    TextChanges = 0,    ///< a page whose text differs from the document's begins a document
    TextPresent = 1,    ///< every page with text begins a document
    GroupEqualTexts = 2 ///< TextChanges, then documents with the same text become one
};

/// The documents of one input file. Both lists have one entry per document.
struct SplitDecision
{
    /// 1-based pages, "7" or "3-5"; for GroupEqualTexts several such ranges joined by blanks.
    QStringList rangeList;
    /// The text of the document's first page, which names it; noText() where there was none.
    QStringList textList;
};

/// Decides the documents from the text of every page (noText() for a page without one). The first
/// page always begins a document and a page without text never begins another one, so every page
/// lands in exactly one document. A `methodIndex` that is no SplitMethod gives no documents.
[[nodiscard]] SplitDecision decideSplit(const QStringList &pageTexts, int methodIndex);
