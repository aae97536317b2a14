// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The document information fields, as typed.
struct DocumentInformation
{
    QString title;
    QString author;
    QString subject;
    QString keywords;
    QString creator;
    QString producer;
};

/// The fields as a /DOCINFO pdfmark. They are put in one after another, each in place of the
/// lowest-numbered placeholder that the text then holds, and nothing is escaped: a field that
/// itself holds a placeholder ("%1") takes in a later field.
[[nodiscard]] QString markText(const DocumentInformation &information);

/// Writes markText() to pdfinfo.txt in the working directory, over what is there. A file that
/// cannot be opened is left alone and nobody is told.
void writeMarkFile(const DocumentInformation &information);
