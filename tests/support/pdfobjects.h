// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Looks into PDF files object by object, through qpdf's object model.
namespace pdfobjects {

/// Every object of the file in PDF syntax, strings readable, and the decoded data of every stream:
/// what is nowhere in here is not in the file.
[[nodiscard]] QByteArray decoded(const QString &file);

/// Objects of the file whose syntax contains the text.
[[nodiscard]] int count(const QString &file, const QByteArray &text);

/// Whether qpdf opens the file by itself.
[[nodiscard]] bool canBeOpened(const QString &file);
/// What qpdf complains about in the file, one complaint a line; empty for a sound file.
[[nodiscard]] QString complaints(const QString &file);

/// The index (from 0) of the page that the first link of each page leads to, -1 where there is no
/// such link, separated by blanks: "1 -1 0".
[[nodiscard]] QString linkTargets(const QString &file);

/// The label of each page as a viewer shows it, lower-case Roman or decimal numbers.
[[nodiscard]] QStringList labels(const QString &file);

/// Items of the first array with this key in any dictionary of the catalog, or of its
/// /OCProperties.
[[nodiscard]] int listLength(const QString &file, const char *key);

/// The full name of the field that each widget is found to belong to, page by page, separated by
/// blanks.
[[nodiscard]] QString fieldNames(const QString &file);

/// What is wrong with the structure tree, empty when nothing is: every element is listed by the one
/// above it, and the tagged contents of every page lead to elements of that page.
[[nodiscard]] QString structureFaults(const QString &file);

enum class Assembling { Allowed, Forbidden };

/// The file encrypted with these passwords by revision 6 (AES-256) or 4 (AES-128) of the standard
/// security handler.
[[nodiscard]] QByteArray encrypted(const QByteArray &pdf, const char *userPassword,
                                   const char *ownerPassword, Assembling assembling,
                                   int revision = 6);

/// The file with its dictionaries in object streams and its table of offsets in a stream, too.
[[nodiscard]] QByteArray withObjectStreams(const QByteArray &pdf);

/// Whether the file is encrypted, opens without a password and forbids or allows assembling.
[[nodiscard]] bool isEncryptedWith(const QString &file, Assembling assembling);

} // namespace pdfobjects
