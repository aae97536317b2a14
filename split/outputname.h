// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <functional>

/// The parts of an output document's name.
struct OutputDocument
{
    int number = 1;   ///< 1-based among the documents of its input file
    QString text;     ///< the text that names the document
    QString baseName; ///< of the input file: its name up to the first dot
    QString ranges;   ///< the document's page ranges, as decideSplit() writes them
    int copy = 1;     ///< from 2 on it is added to the name, " (2)", see firstFreePath()
};

/// The longest file name, in bytes of UTF-8, that the file system takes in the folder, which need
/// not exist if its parent does: 255, or less where names are encrypted.
[[nodiscard]] int longestFileName(const QString &folder);

/// "NUMBER TEXT BASENAME RANGES.pdf"; with `methodIndex` GroupEqualTexts the ranges, which may be
/// many, are left out. In the text "/" becomes "-" and control characters become blanks, and the
/// text is cut after a whole character so that the name fits `maxBytes`. Where that is not
/// enough the base name is cut, too. The other parts are never cut: number and range keep the names
/// of one file's documents apart.
[[nodiscard]] QString outputFileName(const OutputDocument &document, int methodIndex, int maxBytes);

/// Where the documents of an input with this base name are.
[[nodiscard]] QString documentsFolder(const QString &outputFolder, const QString &baseName);

/// The path of an output document: `outputFolder`, the subfolder of the input file, the name as the
/// file system there takes it.
[[nodiscard]] QString outputPath(const QString &outputFolder, const OutputDocument &document,
                                 int methodIndex);

/// `text` as it may stand in a file name: "/" becomes "-", control characters become blanks (see
/// withoutControlCharacters()), and it ends after the last whole character that fits `maxBytes`
/// bytes of UTF-8.
[[nodiscard]] QString fileNameText(const QString &text, qsizetype maxBytes);

/// The first of pathOfCopy(1), pathOfCopy(2), ... that `isFree` accepts, for documents that would
/// otherwise overwrite each other.
[[nodiscard]] QString firstFreePath(const std::function<QString(int copy)> &pathOfCopy,
                                    const std::function<bool(const QString &path)> &isFree);
