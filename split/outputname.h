// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The parts of an output document's name.
struct OutputDocument
{
    int number = 1;   ///< 1-based among the documents of its input file
    QString text;     ///< the text that names the document
    QString baseName; ///< of the input file: no folder, no suffix
    QString ranges;   ///< the document's page ranges, as decideSplit() writes them
};

/// The longest file name that Linux file systems take, in bytes of UTF-8.
constexpr int maxFileNameBytes = 255;

/// "NUMBER TEXT BASENAME RANGES.pdf"; with `methodIndex` GroupEqualTexts the ranges, which may be
/// many, are left out. In the text "/" becomes "-" and control characters become blanks, and the
/// text is cut after a whole character so that the name fits maxFileNameBytes. The other parts are
/// never cut: number and range keep the names of one file's documents apart.
[[nodiscard]] QString outputFileName(const OutputDocument &document, int methodIndex);

/// The path of an output document: `outputFolder`, the subfolder of the input file, the name.
[[nodiscard]] QString outputPath(const QString &outputFolder, const OutputDocument &document,
                                 int methodIndex);

/// `path` with " (COUNT)" before its ".pdf", for documents of different input files that would
/// otherwise overwrite each other.
[[nodiscard]] QString numberedPath(const QString &path, int count);
