// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "batch/textquery.h"
#include "pdf/document/document.h"

#include <QList>
#include <QStringList>

#include <atomic>

/// What the pages of one file say.
struct PageTexts
{
    QStringList texts;       ///< for each page the deciding text, or noText()
    QList<int> pagesWithout; ///< pages (from 1) without any text, as scans are before OCR
    QList<int> pagesGivenUp; ///< pages (from 1) that could not be read and count as without text
    QList<int> pagesUnknown; ///< pages (from 1) whose deciding text has letters without characters
    QStringList complaints;  ///< why, one entry for each page given up
    QList<int> pagesDamaged; ///< pages (from 1) whose contents could be decoded in part only
    bool isRepaired = false; ///< objects that pages need were not where the file says
    bool hasAnyAtPosition = false;
};

/// Reads all pages in up to `workers` processes of their own, so that a page that crashes the
/// reader or takes too long is lost alone. `pagesDone` is counted up in shared memory.
/// Throws pdf::Error when the file as a whole cannot be read.
[[nodiscard]] PageTexts readPageTexts(pdf::Document &document, const TextQuery &query, int workers,
                                      std::atomic<int> &pagesDone);

/// The fragments of one page (from 1), read in a process of its own.
/// Throws pdf::Error: Usage when there is no such page, InputUnreadable.
[[nodiscard]] std::vector<pdf::Fragment> readFragments(pdf::Document &document, int page);
