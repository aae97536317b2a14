// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Command lines of the two tools, and the files they leave. Both tools stand in the application
/// folder `appFolder`; a command line is split into arguments by QProcess::splitCommand, so every
/// path is quoted.

/// `path` in double quotes; a double quote inside it is written as three, which stands for one.
[[nodiscard]] QString quotedPath(const QString &path);

/// The file through which stavekit reports a page count.
[[nodiscard]] QString pageInfoFile(const QString &appFolder);

/// stavekit writes the page count of `input` into pageInfoFile().
[[nodiscard]] QString pageCountCommand(const QString &appFolder, const QString &input);

/// quillrend writes a layout file for every page of `input` into `temporaryFolder`.
[[nodiscard]] QString layoutCommand(const QString &appFolder, const QString &temporaryFolder,
                                    const QString &input);

/// The layout file of a page (1-based) that layoutCommand() leaves.
[[nodiscard]] QString layoutFile(const QString &temporaryFolder, int page);

/// quillrend writes the layout file and the image of a page (1-based) of `input`, or of every page
/// when `page` is 0; `output` is the name that theirs are derived from.
[[nodiscard]] QString previewCommand(const QString &appFolder, const QString &input, int page,
                                     const QString &output);

/// The output name that the rule editor gives to previewCommand(). For a single page, whichever it
/// is, the two files that follow are then written.
[[nodiscard]] QString previewOutput(const QString &temporaryFolder);
[[nodiscard]] QString previewLayoutFile(const QString &temporaryFolder);
[[nodiscard]] QString previewImageFile(const QString &temporaryFolder);

/// stavekit writes the pages `ranges` of `input`, in that order, as the document `output`.
[[nodiscard]] QString mergeCommand(const QString &appFolder, const QString &input,
                                   const QString &ranges, const QString &output);

/// The digits after "NumberOfPages: " in the text of a page-count file; empty when the tool could
/// not read the input.
[[nodiscard]] QString pageCountDigits(const QString &info);
