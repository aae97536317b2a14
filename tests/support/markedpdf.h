// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "tests/support/pdfbuilder.h"

/// A file of pages 1 to count in which everything that a page can hold, or that can lead to a page,
/// carries the page's own marker: a word and the page's number ("text2").
///
/// All pages are reachable from each other: through page tree, links, names, outline, fields,
/// threads, structure, labels, and dictionaries of resources that serve all of them (odd pages
/// refer to one, even pages inherit one). Each page links to the next, the last to the first. On
/// page 3 a widget does not say which field it belongs to; only the field lists it.
class MarkedPdf
{
public:
    explicit MarkedPdf(int pageCount);

    [[nodiscard]] QByteArray bytes();

private:
    void definePage(int number);
    void addResources(const QByteArray &digit);
    QByteArray pageExtras(int number);
    QByteArray addAnnotations(int number);
    int addOutline();
    QByteArray structureTree();
    QByteArray catalogEntries();

    PdfBuilder file;
    int count;
    int root;
    int resources;
    int group;
    int sharedField;
    int document; ///< the topmost structure element
    QList<int> pages;
    QList<int> beads;
    QList<int> paragraphs;
    QList<int> formElements;
    QList<int> stamps;
    QList<int> widgets;
    QList<int> sharedWidgets;
    QList<int> layers;
    QByteArray fonts;
    QByteArray images;
    QByteArray properties;
    QByteArray views; ///< of the layers: alternative states
};
