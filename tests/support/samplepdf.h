// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

/// One invoice of a sample file. Its number and customer stand in the same places on each of its
/// pages, so a rule can be made of either.
struct SampleInvoice
{
    QString number;
    QString customer;
    int pages = 1;
    /// Leaves the number off all pages but the first, as letters with a cover page do.
    bool isNumberOnFirstPageOnly = false;
};

/// How the pages of a sample file are made. All of them show upright text to the reader.
enum class SampleLayout {
    Portrait,
    Rotated90, ///< drawn sideways and turned by /Rotate, as scanners do
    Cropped    ///< larger than what its crop box shows
};

/// Who can open a sample file.
struct SampleEncryption
{
    QByteArray userPassword; ///< empty: opens without being asked
    bool mayAssemble = true; ///< permission to take pages out
    bool mayPrint = true;
};

/// Writes a PDF of `invoices`, one after another, to `path`. The application object must be a
/// QGuiApplication. Returns whether the file could be written.
[[nodiscard]] bool writeSamplePdf(const QString &path, const QList<SampleInvoice> &invoices,
                                  SampleLayout layout = SampleLayout::Portrait);

/// Writes an encrypted copy of the PDF at `source`.
void encryptSamplePdf(const QString &source, const QString &path,
                      const SampleEncryption &encryption);

/// The invoice batch that is shipped as examples/invoices.pdf: 12 pages, invoices of 1 to 4 pages
/// for several customers, one of whom comes twice.
[[nodiscard]] QList<SampleInvoice> exampleInvoices();
