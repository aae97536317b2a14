// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/pagefragments.h"

#include "pdf/document/document.h"
#include "pdf/layout/pagereader.h"
#include "tests/support/pdfbuilder.h"

#include <QTemporaryDir>

std::vector<pdf::Fragment> fragmentsOf(const QByteArray &file)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("in.pdf");
    writeFile(path, file);
    pdf::Document document(path.toStdString());
    const pdf::ReadablePages pages(document);
    return pdf::PageReader(pages).fragments(0);
}
