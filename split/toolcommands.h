// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Command lines of the two tools, and the files they leave. Both tools stand in the application
/// folder `appFolder`; a command line is split into arguments by QProcess::splitCommand, so every
/// path is quoted.

/// `path` in double quotes; a double quote inside it is written as three, which stands for one.
[[nodiscard]] QString quotedPath(const QString &path);

/// The file in `folder` through which stavekit reports a page count; see PageInfoFile.
[[nodiscard]] QString pageInfoFile(const QString &folder);

/// stavekit writes the page count of `input` into `infoFile`.
[[nodiscard]] QString pageCountCommand(const QString &appFolder, const QString &input,
                                       const QString &infoFile);

/// quillrend writes a layout file for every page of `input` into `temporaryFolder`.
[[nodiscard]] QString layoutCommand(const QString &appFolder, const QString &temporaryFolder,
                                    const QString &input);

/// The layout file of a page (1-based) that layoutCommand() leaves.
[[nodiscard]] QString layoutFile(const QString &temporaryFolder, int page);

/// Whether layoutCommand() may have left a file of this name.
[[nodiscard]] bool isLayoutFile(const QString &name);

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

/// The value of a further line "KEY: value" of a page-count file, such as "Error", which says why
/// there is no count; empty when there is no such line.
[[nodiscard]] QString pageInfoValue(const QString &info, QLatin1String key);
