// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

/// Reads finished PDF files back the way a viewer does, through MuPDF's own page handling and text
/// extraction: an oracle that shares no code with the tools under test.
namespace pdfreader {

/// Pages of the file, -1 when it cannot be opened or wants a password.
[[nodiscard]] int pageCount(const QString &file);

/// The text of every page, its lines joined by line feeds; empty when the file cannot be opened.
[[nodiscard]] QStringList pageTexts(const QString &file);

/// The page with this index (from 0) as a viewer shows it, annotations included, with the
/// resolution given in dots per inch; a null image when there is no such page.
[[nodiscard]] QImage renderPage(const QString &file, int index, int dpi = 96);

/// Pages as renderPage() gives them, and what the reader complained about meanwhile.
struct Drawing
{
    QList<QImage> pages;
    QString complaints;
};
/// Draws the pages with these indexes.
[[nodiscard]] Drawing drawPages(const QString &file, const QList<int> &indexes);

/// What the reader complained about while it opened and drew every page, one complaint a line;
/// empty for a sound file.
[[nodiscard]] QString complaints(const QString &file);

} // namespace pdfreader
